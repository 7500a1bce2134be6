// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

namespace vantoro {

// Parts of the program that it loads when they are first used: the libraries beneath them take
// longer to load, and more memory, than all that a window needs to be shown. Any thread.

/// What a module has under its name begins with this: the version that it belongs to, for an update
/// may replace the file under a program that runs.
struct ProgramModule {
    const char* version;
};

/// Where the build, or the installation, of the running program has the file of this name.
std::filesystem::path moduleBesideTheProgram(const std::string& fileName);

/// What the module in the file has under this name. It stays in memory until the process ends: what
/// it makes may live as long. Throws `Failure` where it cannot be loaded, or is not of this
/// program's version.
const ProgramModule& loadModule(const std::filesystem::path& file, const char* name);

} // namespace vantoro
