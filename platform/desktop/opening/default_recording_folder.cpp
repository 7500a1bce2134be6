// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/default_recording_folder.h"

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>

namespace vantoro::desktop {

namespace {

/// Without a trailing separator, which would make equal folders compare as different.
std::filesystem::path plain(const std::filesystem::path& folder) {
    const auto normal = folder.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

} // namespace

std::filesystem::path defaultRecordingFolder() {
    return recordingFolderIn(
        QStandardPaths::writableLocation(QStandardPaths::MoviesLocation).toStdString(),
        QDir::homePath().toStdString());
}

std::filesystem::path recordingFolderIn(const std::filesystem::path& movies,
                                        const std::filesystem::path& home) {
    const bool hasMovies = !movies.empty() && plain(movies) != plain(home);
    return (hasMovies ? plain(movies) : plain(home) / "Movies") / "Vantoro";
}

} // namespace vantoro::desktop
