// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

namespace vantoro::posix {

/// Never replaces anything: throws EEXIST when something is at `to`, in one step where the file
/// system has one. Where it has neither that nor second names for a file, an empty file keeps the
/// place for a moment, and would stay there if the power failed in it.
void renameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

// The ways, best first. Each throws as above, and is false where the file system does not know it.

bool renameInOneStep(const std::filesystem::path& from, const std::filesystem::path& to);
/// By a second name, of which the first is removed then.
bool renameByLink(const std::filesystem::path& from, const std::filesystem::path& to);
/// Over an empty file that nobody else can have made.
bool renameOverOwnFile(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace vantoro::posix
