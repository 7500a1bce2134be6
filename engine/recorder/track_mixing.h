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

/// The linear gain of a track, by its place in the file.
using TrackVolume = std::function<float(std::size_t trackIndex)>;

/// The volumes of a recording's tracks: the system's sound comes first, when it was recorded.
TrackVolume recordingVolumes(bool hasSystemAudioTrack, float systemVolume, float microphoneVolume);

/// Mixes all tracks of the recording, each at its volume from time zero on, and exports the mix to
/// the place, where on return it is complete and on disk. Task threads only.
/// Throws `RecordingError` (`noAudioCaptured`, `exportFailed`), or the platform's error unchanged,
/// after a requested stop std::errc::operation_canceled; then nothing is left of this attempt.
FinalFile mixTracks(Recording& recording, OutputPlace place, const TrackVolume& volumeOfTrack,
                    const ExportProgress& progress, const std::stop_token& stop);

/// Exports a mix through a staging file that takes its final name when it is complete. Throws as
/// `mixTracks`.
FinalFile exportM4A(Recording& recording, const std::vector<float>& volumes, OutputPlace place,
                    const ExportProgress& progress, const std::stop_token& stop);

/// Removes what may be there. For clean-up, where a failure changes nothing.
void removeIgnoringErrors(FileSystem& fileSystem, const std::filesystem::path& path) noexcept;

} // namespace vantoro
