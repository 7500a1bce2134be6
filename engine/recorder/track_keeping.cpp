// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/track_keeping.h"

#include <cstddef>
#include <string>

namespace vantoro {

namespace {

/// Only the computer's sound is stereo.
const std::string& nameOf(const Recording& recording, std::size_t track, const TrackNames& names) {
    return recording.channelsOf(track) == 2 ? names.systemAudio : names.microphone;
}

} // namespace

std::vector<FinalFile> keepTracks(Recording& recording, FileSystem& fileSystem,
                                  const std::filesystem::path& finalFile, const TrackNames& names,
                                  const ExportProgress& progress, const std::stop_token& stop) {
    const auto title = finalFile.stem().string();
    const ExportProgress stillAtTheEnd = [&](double) {
        if (progress) {
            progress(1.0);
        }
    };
    std::vector<FinalFile> files;
    try {
        for (std::size_t track = 0; track < recording.trackCount(); ++track) {
            const auto suffix = " (" + nameOf(recording, track, names) + ")";
            OutputPlace place(fileSystem, finalFile.parent_path(), title + suffix);
            recording.copyTrack(track, {.title = title, .suffix = suffix}, place.stagingFile(),
                                stillAtTheEnd, stop);
            files.push_back(place.publish(nullptr));
        }
    } catch (...) {
        discard(files);
        throw;
    }
    return files;
}

std::exception_ptr failureToKeepTracks(Recording& recording, FileSystem& fileSystem,
                                       const std::filesystem::path& finalFile,
                                       const std::optional<TrackNames>& names,
                                       const ExportProgress& progress) noexcept {
    try {
        if (names) {
            keepTracks(recording, fileSystem, finalFile, *names, progress, {});
        }
        return nullptr;
    } catch (...) {
        return std::current_exception();
    }
}

void discard(const std::vector<FinalFile>& files) noexcept {
    for (const FinalFile& final : files) {
        final.file->discard();
    }
}

} // namespace vantoro
