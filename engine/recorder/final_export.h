// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"
#include "engine/ports/recording_writer.h"
#include "engine/recorder/track_mixing.h"

namespace vantoro {

/// What becomes of a recording's temporary file.
struct FinalExport {
    std::filesystem::path temporaryFile;
    TrackVolume volumeOfTrack;
    /// Whether it holds all that was captured. Only then is it deleted.
    bool isAllWritten = true;
};

/// Makes the final file of a recording that its writer has finished: beside the temporary file, and
/// named after this moment. Then deletes the temporary file, or sets it aside where the final one
/// does not hold all that was captured. Returns the final file's place. Blocks; task threads only.
/// Throws as `mixTracks`; then the temporary file is as it was.
std::filesystem::path exportFinal(RecordingWriter& writer, FileSystem& fileSystem,
                                  const Clock& clock, const FinalExport& wanted,
                                  const ExportProgress& progress);

} // namespace vantoro
