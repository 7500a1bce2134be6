// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <vector>

#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "engine/recording_types.h"

namespace vantoro {

/// The platform ports of salvage.
struct SalvagePlatform {
    MediaToolkit& mediaToolkit;
    FileSystem& fileSystem;
    const Clock& clock;
};

/// Why an interrupted recording, or the folder, was left unchanged.
struct SalvageFailure {
    std::filesystem::path location;
    std::exception_ptr error;

    friend bool operator==(const SalvageFailure&, const SalvageFailure&) = default;
};

/// The result of a salvage.
struct SalvageResult {
    std::vector<std::filesystem::path> recordings; ///< final files, in the order made
    /// Originals kept because they could not be read completely; see `setAside`.
    std::vector<std::filesystem::path> keptOriginals;
    /// Files left for another attempt that may hold sound.
    std::vector<SalvageFailure> failures;
    /// Recordings whose sources' own files could not be written.
    std::vector<TracksNotKept> tracksNotKept = {};

    friend bool operator==(const SalvageResult&, const SalvageResult&) = default;
};

/// Whether the file is named like an unfinished recording.
bool isIncompleteRecording(const std::filesystem::path& file);

/// The unfinished recordings in a listing, oldest modification first, unknown times at the front.
std::vector<std::filesystem::path> incompleteRecordings(std::vector<FolderEntry> listing);

/// How many recordings `recoverIncompleteRecordings` would finish: unfinished, with sound, and not
/// in use by a recorder. Blocks; task threads only. Never throws: unreadable files do not count.
std::size_t recordingsToRecover(MediaToolkit& mediaToolkit, FileSystem& fileSystem,
                                const std::filesystem::path& folder);

/// Whether the file holds readable sound. Blocks; task threads only.
bool holdsSound(MediaToolkit& mediaToolkit, const std::filesystem::path& file) noexcept;

/// Exports each unfinished recording in the folder at full volume, with its tracks if they are
/// named, then deletes its original, or sets it aside if not all of it could be read or kept.
/// Blocks; task threads only. Never throws: an original that is in use, or where anything fails,
/// stays, and the attempt leaves nothing behind. A requested stop has the same effect at once.
/// `progress`, which may be empty, is that of all files, reported at most ten times a second.
SalvageResult recoverIncompleteRecordings(const SalvagePlatform& platform,
                                          const std::filesystem::path& folder,
                                          const std::optional<TrackNames>& trackNames,
                                          const std::stop_token& stop,
                                          const ExportProgress& progress);

} // namespace vantoro
