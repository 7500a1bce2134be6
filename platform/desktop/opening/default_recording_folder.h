// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

namespace vantoro::desktop {

/// The default recording folder; it need not exist. Any thread.
std::filesystem::path defaultRecordingFolder();

/// `movies`: the user's video folder; if there is none, empty or the home folder itself.
std::filesystem::path recordingFolderIn(const std::filesystem::path& movies,
                                        const std::filesystem::path& home);

} // namespace vantoro::desktop
