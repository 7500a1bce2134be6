// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"

namespace vantoro {

/// The linear gain of a track, by its place in the file.
using TrackVolume = std::function<float(std::size_t trackIndex)>;

/// The volumes of a recording's tracks: the system's sound comes first, when it was recorded.
TrackVolume recordingVolumes(bool hasSystemAudioTrack, float systemVolume, float microphoneVolume);

/// Lays all audio tracks of the asset side by side from time zero, each at its volume, and exports
/// the mix to the destination, which on return is complete and on disk. Task threads only.
/// Throws `RecordingError` (`noAudioCaptured`, `exportFailed`), or the platform's error unchanged;
/// then the destination holds nothing complete of this attempt.
void mixTracks(MediaToolkit& toolkit, FileSystem& fileSystem, Asset& asset,
               const std::filesystem::path& destination, const TrackVolume& volumeOfTrack,
               const ExportProgress& progress);

/// Exports a composition through a staging file that is moved into place when it is complete. No
/// staging file is left, whatever happens. Throws as `mixTracks`.
void exportM4A(MediaToolkit& toolkit, FileSystem& fileSystem, const Composition& composition,
               AudioMix mix, const std::filesystem::path& destination,
               const ExportProgress& progress);

/// Removes what may be there. For clean-up, where a failure changes nothing.
void removeIgnoringErrors(FileSystem& fileSystem, const std::filesystem::path& path) noexcept;

} // namespace vantoro
