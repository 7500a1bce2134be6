// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/final_export.h"

#include <exception>
#include <utility>

#include "engine/files/file_names.h"
#include "engine/files/set_aside.h"

namespace vantoro {

namespace {

/// If the move fails, the file stays for salvage: better twice than never.
void setAsideIgnoringErrors(FileSystem& fileSystem, const std::filesystem::path& temporaryFile,
                            const std::filesystem::path& finalFile) noexcept {
    try {
        setAside(fileSystem, temporaryFile, finalFile);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): see above
    }
}

} // namespace

std::filesystem::path exportFinal(RecordingWriter& writer, FileSystem& fileSystem,
                                  const Clock& clock, const FinalExport& wanted,
                                  const ExportProgress& progress) {
    const auto& temporaryFile = wanted.temporaryFile;
    auto place = uniqueOutputURL(temporaryFile.parent_path(), fileSystem, clock);
    const auto recording = writer.openRecording();
    const auto final = mixTracks(*recording, std::move(place), wanted.volumeOfTrack, progress, {});
    if (wanted.isAllWritten && recording->isWhole()) {
        removeIgnoringErrors(fileSystem, temporaryFile);
    } else {
        setAsideIgnoringErrors(fileSystem, temporaryFile, final.location);
    }
    return final.location;
}

} // namespace vantoro
