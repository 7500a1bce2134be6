// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

namespace vantoro::desktop {

/// Where recordings go until the user chooses a folder; it need not exist. Any thread.
std::filesystem::path defaultRecordingFolder();

/// `movies`: the user's folder of films, empty, or the home folder itself, where there is none.
std::filesystem::path recordingFolderIn(const std::filesystem::path& movies,
                                        const std::filesystem::path& home);

} // namespace vantoro::desktop
