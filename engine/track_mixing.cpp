// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/track_mixing.h"

#include <exception>
#include <system_error>
#include <utility>

#include "engine/file_names.h"
#include "engine/recording_types.h"

namespace vantoro {

namespace {

/// Removes the staging file at the end of an export, however it ends.
class StagingFile {
public:
    /// Throws when somebody else exports to the same place.
    StagingFile(FileSystem& fileSystem, const std::filesystem::path& destination)
        : fileSystem_(fileSystem), location_(stagingURL(destination)) {
        if (isBeingExportedTo(destination, fileSystem_)) {
            throw std::system_error(std::make_error_code(std::errc::file_exists),
                                    "Cannot create " + location_.filename().string());
        }
        removeIgnoringErrors(fileSystem_, location_);
    }

    StagingFile(const StagingFile&) = delete;
    StagingFile& operator=(const StagingFile&) = delete;

    ~StagingFile() { removeIgnoringErrors(fileSystem_, location_); }

    const std::filesystem::path& location() const noexcept { return location_; }

private:
    FileSystem& fileSystem_;
    std::filesystem::path location_;
};

} // namespace

TrackVolume recordingVolumes(bool hasSystemAudioTrack, float systemVolume, float microphoneVolume) {
    return [=](std::size_t trackIndex) {
        return trackIndex == 0 && hasSystemAudioTrack ? systemVolume : microphoneVolume;
    };
}

void mixTracks(MediaToolkit& toolkit, FileSystem& fileSystem, Asset& asset,
               const std::filesystem::path& destination, const TrackVolume& volumeOfTrack,
               const ExportProgress& progress) {
    const auto sourceTracks = asset.audioTracks();
    if (sourceTracks.empty()) {
        throw RecordingError(RecordingError::Case::noAudioCaptured);
    }
    const auto composition = toolkit.makeComposition();
    AudioMix mix;
    for (std::size_t index = 0; index < sourceTracks.size(); ++index) {
        CompositionTrack* const track = composition->addAudioTrack();
        if (track == nullptr) {
            throw RecordingError(RecordingError::Case::exportFailed);
        }
        track->insert(sourceTracks[index]->timeRange(), sourceTracks[index], zeroTime);
        mix.push_back({.track = track, .volume = volumeOfTrack(index), .time = zeroTime});
    }
    exportM4A(toolkit, fileSystem, *composition, std::move(mix), destination, progress);
}

void exportM4A(MediaToolkit& toolkit, FileSystem& fileSystem, const Composition& composition,
               AudioMix mix, const std::filesystem::path& destination,
               const ExportProgress& progress) {
    const StagingFile staging(fileSystem, destination);
    const auto session = toolkit.makeExportSession(composition);
    if (!session) {
        throw RecordingError(RecordingError::Case::exportFailed);
    }
    session->setAudioMix(std::move(mix));
    session->exportTo(staging.location(), progress);
    if (fileSystem.exists(destination)) {
        fileSystem.remove(destination);
    }
    fileSystem.move(staging.location(), destination);
    // Only when the new name is on the disk may anybody delete what the file was made from.
    fileSystem.syncFolder(destination.parent_path());
}

void removeIgnoringErrors(FileSystem& fileSystem, const std::filesystem::path& path) noexcept {
    try {
        fileSystem.remove(path);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): most often nothing was there
    }
}

} // namespace vantoro
