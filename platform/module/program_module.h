// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

namespace vantoro {

// Modules that the program loads on first use, because their libraries take more time and memory
// than the whole window. Any thread.

/// The start of every module's entry: the program version it belongs to, since an update may
/// replace the file while the program runs.
struct ProgramModule {
    const char* version;
};

/// The path of the module with this file name, next to the program, in the build tree or installed.
std::filesystem::path moduleBesideTheProgram(const std::string& fileName);

/// The entry with this name in the module. The module stays loaded until the process ends. Throws
/// `Failure` if it cannot be loaded or is of another version.
const ProgramModule& loadModule(const std::filesystem::path& file, const char* name);

} // namespace vantoro
