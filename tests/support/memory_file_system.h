// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/ports/file_system.h"
#include "tests/support/call_log.h"
#include "tests/support/disk_troubles.h"

namespace vantoro::testing {

/// A file's content and the operations on it, in order: "create" or "unnamed", "write",
/// "truncate", "sync", "reach", "name", "close".
struct MemoryFile {
    std::vector<std::byte> content;
    std::vector<std::string> journal;
    std::optional<std::filesystem::file_time_type> modified;
};

/// Files in memory, on a disk that can be full, broken or stuck. Any thread.
class MemoryFileSystem final : public FileSystem, public DiskTroubles {
public:
    MemoryFileSystem() = default;

    /// Adds each call to the log.
    explicit MemoryFileSystem(CallLog& log) : log_(log) {}

    void createFolders(const std::filesystem::path& folder) override;
    bool exists(const std::filesystem::path& path) const override;
    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;
    /// Null if the path is `locked`; otherwise replaces a file that is there.
    std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                      FileAudience audience) override;
    std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                              FileAudience audience) override;
    std::uint64_t availableSpace(const std::filesystem::path& folder) const override;
    std::unique_ptr<InputFile> open(const std::filesystem::path& path) override;
    std::vector<FolderEntry> list(const std::filesystem::path& folder) override;
    std::unique_ptr<FileLock> lock(const std::filesystem::path& path) override;

    void clear();
    void put(const std::filesystem::path& path, std::vector<std::byte> content = {},
             std::optional<std::filesystem::file_time_type> modified = std::nullopt);
    /// The paths of all files.
    std::set<std::filesystem::path> paths() const;
    std::vector<std::byte> contentOf(const std::filesystem::path& path) const;
    std::vector<std::string> journalOf(const std::filesystem::path& path) const;

    FileAudience audience() const { return audience_; }

    /// All files together may hold this much; a write that goes beyond is done in part, then fails.
    void setCapacity(std::uint64_t bytes);
    /// Every write waits from now on, as on a disk that is stuck; or goes on.
    void setStuck(bool stuck);

    // Each waits for something, and returns false when it was not within half a minute.

    /// So many files without a name were made, or should have been.
    bool waitForUnnamed(std::size_t count);
    /// Somebody asked for the space that is left.
    bool waitUntilSpaceIsAsked();
    /// A write is stuck.
    bool waitUntilStuck();
    /// The file is so large and was synced.
    bool waitForSyncedSize(const std::filesystem::path& path, std::size_t size);
    bool waitForSyncs(const std::filesystem::path& path, std::ptrdiff_t count);

private:
    friend class MemoryOutputFile;

    std::unique_ptr<OutputFile> make(const std::filesystem::path& path, FileAudience audience);
    /// An empty path: without a name.
    std::unique_ptr<OutputFile> outputFile(std::shared_ptr<MemoryFile> file,
                                           const std::filesystem::path& path);
    std::uint64_t used() const;
    bool comesTrue(const std::function<bool()>& condition);

    CallLog ownLog_;
    CallLog& log_ = ownLog_;
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<std::filesystem::path, std::shared_ptr<MemoryFile>> files_;
    std::uint64_t capacity_ = std::numeric_limits<std::uint64_t>::max();
    FileAudience audience_ = FileAudience::asUserPrefers; // of the latest file
    std::vector<std::weak_ptr<MemoryFile>> unnamed_;      // all that ever were
    bool stuck_ = false;
    bool someoneWaits_ = false;
};

} // namespace vantoro::testing
