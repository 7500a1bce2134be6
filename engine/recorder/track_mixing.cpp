// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/track_mixing.h"

#include <exception>
#include <utility>

#include "engine/recording_types.h"

namespace vantoro {

TrackVolume recordingVolumes(bool hasSystemAudioTrack, float systemVolume, float microphoneVolume) {
    return [=](std::size_t trackIndex) {
        return trackIndex == 0 && hasSystemAudioTrack ? systemVolume : microphoneVolume;
    };
}

FinalFile mixTracks(Recording& recording, OutputPlace place, const TrackVolume& volumeOfTrack,
                    const ExportProgress& progress, const std::stop_token& stop) {
    std::vector<float> volumes(recording.trackCount());
    if (volumes.empty()) {
        throw RecordingError(RecordingError::Case::noAudioCaptured);
    }
    for (std::size_t index = 0; index < volumes.size(); ++index) {
        volumes[index] = volumeOfTrack(index);
    }
    return exportM4A(recording, volumes, std::move(place), progress, stop);
}

FinalFile exportM4A(Recording& recording, const std::vector<float>& volumes, OutputPlace place,
                    const ExportProgress& progress, const std::stop_token& stop) {
    auto other = recording.mix(volumes, place.stagingFile(), progress, stop);
    return place.publish(std::move(other));
}

void removeIgnoringErrors(FileSystem& fileSystem, const std::filesystem::path& path) noexcept {
    try {
        fileSystem.remove(path);
    } catch (
        const std::exception&) { // NOLINT(bugprone-empty-catch): usually there is nothing to remove
    }
}

} // namespace vantoro
