// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/track_mixing.h"

#include <exception>
#include <utility>

#include "engine/recording_types.h"

namespace vantoro {

TrackVolume recordingVolumes(bool hasSystemAudioTrack, float systemVolume, float microphoneVolume) {
    return [=](std::size_t trackIndex) {
        return trackIndex == 0 && hasSystemAudioTrack ? systemVolume : microphoneVolume;
    };
}

FinalFile mixTracks(MediaToolkit& toolkit, Asset& asset, OutputPlace place,
                    const TrackVolume& volumeOfTrack, const ExportProgress& progress,
                    const std::stop_token& stop) {
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
    return exportM4A(toolkit, *composition, std::move(mix), std::move(place), progress, stop);
}

FinalFile exportM4A(MediaToolkit& toolkit, const Composition& composition, AudioMix mix,
                    OutputPlace place, const ExportProgress& progress,
                    const std::stop_token& stop) {
    const auto session = toolkit.makeExportSession(composition);
    if (!session) {
        throw RecordingError(RecordingError::Case::exportFailed);
    }
    session->setAudioMix(std::move(mix));
    auto other = session->exportTo(place.stagingFile(), progress, stop);
    return place.publish(std::move(other));
}

void removeIgnoringErrors(FileSystem& fileSystem, const std::filesystem::path& path) noexcept {
    try {
        fileSystem.remove(path);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): most often nothing was there
    }
}

} // namespace vantoro
