// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/salvage.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "engine/files/file_names.h"
#include "engine/files/output_place.h"
#include "engine/recorder/progress_pace.h"
#include "engine/recorder/track_keeping.h"
#include "engine/recorder/track_mixing.h"

namespace vantoro {

namespace {

FinalFile exportRecoveredAsset(Recording& recording, OutputPlace place,
                               const ExportProgress& progress, const std::stop_token& stop) {
    // The user's volumes were lost with the recorder.
    const auto fullVolume = [](std::size_t) { return 1.0F; };
    return mixTracks(recording, std::move(place), fullVolume, progress, stop);
}

/// Null if there is no sound. Throws if unreadable.
std::unique_ptr<Recording> openUnlessSilent(MediaToolkit& mediaToolkit,
                                            const std::filesystem::path& candidate) {
    auto recording = mediaToolkit.openRecording(candidate);
    return zeroTime < recording->duration() ? std::move(recording) : nullptr;
}

bool isToBeRecovered(MediaToolkit& mediaToolkit, FileSystem& fileSystem,
                     const std::filesystem::path& candidate) {
    try {
        const auto lock = fileSystem.lock(candidate);
        return lock && holdsSound(mediaToolkit, candidate);
    } catch (const std::exception&) {
        return false;
    }
}

/// Null also for a file that is not a movie, such as the empty file of a start that died. Throws on
/// a disk error.
std::unique_ptr<Recording> openIfReadable(MediaToolkit& mediaToolkit,
                                          const std::filesystem::path& candidate) {
    try {
        return openUnlessSilent(mediaToolkit, candidate);
    } catch (const std::system_error&) {
        throw;
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// A final file, and its original if kept.
struct Recovered {
    std::filesystem::path recording;
    std::optional<std::filesystem::path> keptOriginal;
    std::optional<TracksNotKept> tracksNotKept;
};

/// Deletes the original, or sets it aside if it has more than the final files.
void conclude(FileSystem& fileSystem, Recording& recording, const std::filesystem::path& original,
              const std::exception_ptr& tracksFailure, Recovered& recovered) {
    const bool isWhole = recording.isWhole();
    if (isWhole && !tracksFailure) {
        fileSystem.remove(original);
        return;
    }
    const auto kept = setAside(fileSystem, original, recovered.recording);
    if (!isWhole) {
        recovered.keptOriginal = kept;
    }
    if (tracksFailure) {
        recovered.tracksNotKept = {.original = kept, .reason = tracksFailure};
    }
}

/// Absent if the candidate is to stay. Throws the attempt's error.
std::optional<Recovered> recover(const SalvagePlatform& platform,
                                 const std::filesystem::path& candidate,
                                 const std::optional<TrackNames>& trackNames,
                                 const std::stop_token& stop, const ExportProgress& progress) {
    const auto lock = platform.fileSystem.lock(candidate);
    if (!lock) {
        return std::nullopt; // being recorded, or salvaged elsewhere
    }
    const auto recording = openIfReadable(platform.mediaToolkit, candidate);
    if (!recording) {
        return std::nullopt;
    }
    auto place = uniqueOutputURL(candidate.parent_path(), platform.fileSystem, platform.clock);
    auto final = exportRecoveredAsset(*recording, std::move(place), progress, stop);
    Recovered recovered{.recording = final.location, .keptOriginal = {}, .tracksNotKept = {}};
    std::vector<FinalFile> files;
    std::exception_ptr failure;
    try {
        if (trackNames) {
            files = keepTracks(*recording, platform.fileSystem, final.location, *trackNames,
                               progress, stop);
        }
    } catch (...) {
        failure = std::current_exception();
    }
    files.push_back(std::move(final));
    try {
        if (stop.stop_requested()) {
            discard(files);
            return std::nullopt;
        }
        conclude(platform.fileSystem, *recording, candidate, failure, recovered);
    } catch (...) {
        // Never both keep a recording for another attempt and finish it.
        discard(files);
        throw;
    }
    return recovered;
}

/// Skips what another salvage has already taken away.
bool isFailure(const std::exception& error) {
    const auto* const systemError = dynamic_cast<const std::system_error*>(&error);
    return systemError == nullptr || systemError->code() != std::errc::no_such_file_or_directory;
}

} // namespace

bool holdsSound(MediaToolkit& mediaToolkit, const std::filesystem::path& file) noexcept {
    try {
        return openUnlessSilent(mediaToolkit, file) != nullptr;
    } catch (const std::exception&) {
        return false;
    }
}

bool isIncompleteRecording(const std::filesystem::path& file) {
    const auto extension = file.extension().string();
    const auto lowerCase = [](unsigned char letter) { return std::tolower(letter); };
    return std::ranges::equal(extension, std::string_view(".mov"), {}, lowerCase) &&
           file.stem().extension() == ".partial";
}

std::vector<std::filesystem::path> incompleteRecordings(std::vector<FolderEntry> listing) {
    std::erase_if(listing,
                  [](const FolderEntry& entry) { return !isIncompleteRecording(entry.path); });
    std::ranges::stable_sort(listing, std::less<>(), &FolderEntry::modified);
    std::vector<std::filesystem::path> files;
    std::ranges::transform(listing, std::back_inserter(files), &FolderEntry::path);
    return files;
}

std::size_t recordingsToRecover(MediaToolkit& mediaToolkit, FileSystem& fileSystem,
                                const std::filesystem::path& folder) {
    try {
        const auto candidates = incompleteRecordings(fileSystem.list(folder));
        return static_cast<std::size_t>(std::ranges::count_if(candidates, [&](const auto& file) {
            return isToBeRecovered(mediaToolkit, fileSystem, file);
        }));
    } catch (const std::exception&) {
        return 0;
    }
}

SalvageResult recoverIncompleteRecordings(const SalvagePlatform& platform,
                                          const std::filesystem::path& folder,
                                          const std::optional<TrackNames>& trackNames,
                                          const std::stop_token& stop,
                                          const ExportProgress& progress) {
    SalvageResult result;
    const auto noteFailure = [&](const std::filesystem::path& location,
                                 const std::exception& error) {
        if (isFailure(error)) {
            result.failures.push_back({location, std::current_exception()});
        }
    };
    std::vector<std::filesystem::path> candidates;
    try {
        candidates = incompleteRecordings(platform.fileSystem.list(folder));
    } catch (const std::exception& error) {
        noteFailure(folder, error);
    }
    ProgressPace pace(progress, platform.clock);
    std::size_t begun = 0;
    for (const auto& candidate : candidates) {
        if (stop.stop_requested()) {
            break;
        }
        const auto before = static_cast<double>(begun++);
        const auto ofAll = [&](double ofThis) {
            pace((before + ofThis) / static_cast<double>(candidates.size()));
        };
        try {
            if (auto recovered = recover(platform, candidate, trackNames, stop, ofAll)) {
                result.recordings.push_back(std::move(recovered->recording));
                if (recovered->keptOriginal) {
                    result.keptOriginals.push_back(std::move(*recovered->keptOriginal));
                }
                if (recovered->tracksNotKept) {
                    result.tracksNotKept.push_back(std::move(*recovered->tracksNotKept));
                }
            }
        } catch (const std::exception& error) {
            if (!stop.stop_requested()) { // leave it for the next time
                noteFailure(candidate, error);
            }
        }
    }
    return result;
}

} // namespace vantoro
