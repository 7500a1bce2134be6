// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/track_mixing.h"

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
    std::vector<float> volumes;
    while (volumes.size() < recording.trackCount()) {
        volumes.push_back(volumeOfTrack(volumes.size()));
    }
    if (volumes.empty()) {
        throw RecordingError(RecordingError::Case::noAudioCaptured);
    }
    return exportM4A(recording, volumes, std::move(place), progress, stop);
}

FinalFile exportM4A(Recording& recording, const std::vector<float>& volumes, OutputPlace place,
                    const ExportProgress& progress, const std::stop_token& stop) {
    const auto title = place.location().stem().string();
    auto other = recording.mix(volumes, title, place.stagingFile(), progress, stop);
    return place.publish(std::move(other));
}

} // namespace vantoro
