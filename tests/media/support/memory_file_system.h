// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/ports/file_system.h"

namespace vantoro {

/// What a file holds, and all that was done to it, in order: "create" or "unnamed", "write",
/// "truncate", "sync", "reach", "name", "close".
struct MemoryFile {
    std::vector<std::byte> content;
    std::vector<std::string> journal;
};

/// Files in memory, on a disk that can be full, broken or stuck. Any thread.
class MemoryFileSystem final : public FileSystem {
public:
    void createFolders(const std::filesystem::path&) override {}

    bool exists(const std::filesystem::path& path) const override;
    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;

    void syncFolder(const std::filesystem::path&) override {}

    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;

    /// Whoever left something there has died.
    std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                      FileAudience audience) override;

    std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                              FileAudience audience) override;
    std::uint64_t availableSpace(const std::filesystem::path& folder) const override;
    std::unique_ptr<InputFile> open(const std::filesystem::path& path) override;
    std::vector<FolderEntry> list(const std::filesystem::path& folder) override;
    /// Nobody else is there.
    std::unique_ptr<FileLock> lock(const std::filesystem::path& path) override;

    void clear();
    void put(const std::filesystem::path& path, std::vector<std::byte> content);
    std::vector<std::byte> contentOf(const std::filesystem::path& path) const;
    std::vector<std::string> journalOf(const std::filesystem::path& path) const;

    FileAudience audience() const { return audience_; }

    /// All files together may hold this much; a write that goes beyond is done in part, then fails.
    void setCapacity(std::uint64_t bytes);
    /// From now on `sync` fails, or works again.
    void setSyncFails(bool fails);
    /// From now on no file is created without a name.
    void setHasNoUnnamedFiles();
    /// Waits until so many files were, or should have been; false when not within half a minute.
    bool waitForUnnamed(std::size_t count);
    /// Waits until somebody asked for the space that is left; false when not within half a minute.
    bool waitUntilSpaceIsAsked();
    /// From now on `ensureReachable` fails.
    void setUnreachable();
    /// Every write waits from now on, as on a disk that is stuck; or goes on.
    void setStuck(bool stuck);
    /// Waits until a write is stuck; false when none was within half a minute.
    bool waitUntilStuck();
    /// Waits until the file is so large and was synced; false when not within half a minute.
    bool waitForSyncedSize(const std::filesystem::path& path, std::size_t size);
    /// The same for the number of syncs.
    bool waitForSyncs(const std::filesystem::path& path, std::ptrdiff_t count);

private:
    friend class MemoryOutputFile;
    std::uint64_t used() const;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<std::filesystem::path, std::shared_ptr<MemoryFile>> files_;
    std::uint64_t capacity_ = std::numeric_limits<std::uint64_t>::max();
    FileAudience audience_ = FileAudience::asUserPrefers; // of the latest file
    bool syncFails_ = false;
    bool unreachable_ = false;
    bool hasUnnamed_ = true;
    mutable bool isSpaceAsked_ = false;
    std::vector<std::weak_ptr<MemoryFile>> unnamed_; // all that ever were
    bool stuck_ = false;
    bool someoneWaits_ = false;
};

} // namespace vantoro
