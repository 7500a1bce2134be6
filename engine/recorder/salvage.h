// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <exception>
#include <filesystem>
#include <stop_token>
#include <vector>

#include "engine/ports/clock.h"
#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"

namespace vantoro {

/// What salvage needs of its platform.
struct SalvagePlatform {
    MediaToolkit& mediaToolkit;
    FileSystem& fileSystem;
    const Clock& clock;
};

/// Why an interrupted recording, or the folder, was left as it is.
struct SalvageFailure {
    std::filesystem::path location;
    std::exception_ptr error;

    friend bool operator==(const SalvageFailure&, const SalvageFailure&) = default;
};

/// What a salvage has made.
struct SalvageResult {
    std::vector<std::filesystem::path> recordings; ///< final files, in the order of their making
    /// What was kept of those that could not be read whole; see `setAside`.
    std::vector<std::filesystem::path> keptOriginals;
    /// What stays for another time, though it may hold sound.
    std::vector<SalvageFailure> failures;

    friend bool operator==(const SalvageResult&, const SalvageResult&) = default;
};

/// Whether a file has the name of a recording that was not finished.
bool isIncompleteRecording(const std::filesystem::path& file);

/// The recordings in a listing that were not finished: the one that was written to least recently
/// comes first, those of which that is not known before all others.
std::vector<std::filesystem::path> incompleteRecordings(std::vector<FolderEntry> listing);

/// How many recordings in the folder `recoverIncompleteRecordings` has to finish: unfinished ones
/// that hold sound, and that no recorder has in use. Blocks; task threads only. Never throws: what
/// cannot be read does not count.
std::size_t recordingsToRecover(MediaToolkit& mediaToolkit, FileSystem& fileSystem,
                                const std::filesystem::path& folder);

/// Makes a final file of each unfinished recording in the folder, every track at full volume, and
/// then deletes what it was made from, or sets it aside where not all of it could be read. Blocks;
/// task threads only. Never throws: what cannot be read at all, is in use by a recorder, or cannot
/// be exported, deleted or set aside stays, and nothing is left of the attempt.
/// A requested stop is honoured before each recording, within its export, and right after it.
/// `progress` is told of each recording's export on this thread; it may be empty.
SalvageResult recoverIncompleteRecordings(const SalvagePlatform& platform,
                                          const std::filesystem::path& folder,
                                          const std::stop_token& stop,
                                          const ExportProgress& progress);

} // namespace vantoro
