// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <vector>

#include "engine/files/output_place.h"
#include "engine/ports/file_system.h"
#include "engine/ports/recording.h"

namespace vantoro {

/// Linear gain of a track, by its index in the file.
using TrackVolume = std::function<float(std::size_t trackIndex)>;

/// Gains of a recording's tracks; system audio comes first if recorded.
TrackVolume recordingVolumes(bool hasSystemAudioTrack, float systemVolume, float microphoneVolume);

/// Mixes all tracks from time zero, each at its volume, into a complete file on disk. Task threads
/// only. Throws `RecordingError` (`noAudioCaptured`, `exportFailed`), the platform's error
/// unchanged, or std::errc::operation_canceled after a requested stop; then leaves nothing behind.
FinalFile mixTracks(Recording& recording, OutputPlace place, const TrackVolume& volumeOfTrack,
                    const ExportProgress& progress, const std::stop_token& stop);

/// Exports a mix through a staging file that takes its final name once complete. Throws like
/// `mixTracks`.
FinalFile exportM4A(Recording& recording, const std::vector<float>& volumes, OutputPlace place,
                    const ExportProgress& progress, const std::stop_token& stop);

} // namespace vantoro
