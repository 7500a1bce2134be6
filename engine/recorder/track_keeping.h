// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <vector>

#include "engine/files/output_place.h"
#include "engine/ports/file_system.h"
#include "engine/ports/recording.h"
#include "engine/recording_types.h"

namespace vantoro {

/// Copies each track, without coding it again, into a file beside the final one, which it follows
/// in name: "NAME (microphone).m4a", or with "-2", "-3", … if that is taken. Returns the complete
/// files, on disk. Task threads only. Throws what the recording and the file system throw, and then
/// leaves none of the files behind.
std::vector<FinalFile> keepTracks(Recording& recording, FileSystem& fileSystem,
                                  const std::filesystem::path& finalFile, const TrackNames& names,
                                  const ExportProgress& progress, const std::stop_token& stop);

/// Keeps the tracks if they are named. Returns why that failed, or null. Never throws.
std::exception_ptr failureToKeepTracks(Recording& recording, FileSystem& fileSystem,
                                       const std::filesystem::path& finalFile,
                                       const std::optional<TrackNames>& names,
                                       const ExportProgress& progress) noexcept;

/// Removes files again. Never throws.
void discard(const std::vector<FinalFile>& files) noexcept;

} // namespace vantoro
