// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

namespace vantoro::posix {

/// Never replaces anything: throws EEXIST if something is at `to`. Atomic if the file system
/// supports it. If it supports neither that nor hard links, an empty file reserves the name for a
/// moment, and stays if the power fails then.
void renameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to);

// The methods, best first. Each throws as above, and returns false if the file system does not
// support it.

bool renameInOneStep(const std::filesystem::path& from, const std::filesystem::path& to);
/// Links the new name, then removes the old one.
bool renameByLink(const std::filesystem::path& from, const std::filesystem::path& to);
/// Renames over an empty file that only we can have created.
bool renameOverOwnFile(const std::filesystem::path& from, const std::filesystem::path& to);

} // namespace vantoro::posix
