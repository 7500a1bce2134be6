// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"
#include "engine/ports/recording_writer.h"
#include "engine/recorder/track_mixing.h"

namespace vantoro {

/// How to export a recording's temporary file.
struct FinalExport {
    std::filesystem::path temporaryFile;
    TrackVolume volumeOfTrack;
    /// Whether the file holds everything captured; it is deleted only then.
    bool isAllWritten = true;
};

/// Exports a finished recording next to its temporary file, named after the current time. Then
/// deletes the temporary file, or sets it aside if sound is missing from it. Returns the final
/// file's path. Blocks; task threads only. Throws like `mixTracks`, and then leaves the temporary
/// file unchanged.
std::filesystem::path exportFinal(RecordingWriter& writer, FileSystem& fileSystem,
                                  const Clock& clock, const FinalExport& wanted,
                                  const ExportProgress& progress);

} // namespace vantoro
