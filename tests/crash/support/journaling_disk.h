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
#include <random>
#include <string>
#include <vector>

#include "engine/ports/file_system.h"

namespace vantoro::testing {

/// One operation on a disk.
struct DiskOperation {
    enum class Kind : std::uint8_t {
        create, ///< unnamed if the path is empty
        name,
        write,
        truncate,
        syncFile,
        syncFolder,
        move,
        remove
    };

    // NOLINTBEGIN(readability-redundant-member-init): designated initialisers need defaults
    Kind kind = Kind::create;
    std::size_t file = 0;           ///< number in order of creation; not for folders
    std::filesystem::path path{};   ///< of named files and folders
    std::filesystem::path target{}; ///< of a move
    std::uint64_t offset = 0;       ///< of a write; or a truncation's size
    std::vector<std::byte> bytes{}; ///< of a write
    // NOLINTEND(readability-redundant-member-init)
};

using DiskJournal = std::vector<DiskOperation>;
using DiskContent = std::map<std::filesystem::path, std::vector<std::byte>>;

/// One folder's files in memory, with a journal of all operations. Any thread.
class JournalingDisk final : public FileSystem {
public:
    /// Starts with these files, all synced.
    explicit JournalingDisk(DiskContent content = {});

    DiskJournal journal() const;
    DiskContent content() const;
    /// Waits until an unnamed file is created; false after half a minute.
    bool waitForUnnamedFile();

    void createFolders(const std::filesystem::path&) override {}

    bool exists(const std::filesystem::path& path) const override;
    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;

    /// Always succeeds: the process that left the file has died.
    std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                      FileAudience audience) override;

    std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                              FileAudience audience) override;

    std::uint64_t availableSpace(const std::filesystem::path&) const override {
        return std::numeric_limits<std::uint64_t>::max();
    }

    std::unique_ptr<InputFile> open(const std::filesystem::path& path) override;
    std::vector<FolderEntry> list(const std::filesystem::path& folder) override;
    std::unique_ptr<FileLock> lock(const std::filesystem::path& path) override;

private:
    friend class JournaledFile;
    void add(DiskOperation operation);
    std::size_t nextFile() const;

    mutable std::mutex mutex_;
    std::condition_variable created_;
    std::map<std::filesystem::path, std::size_t> names_;
    std::vector<std::vector<std::byte>> files_;
    DiskJournal journal_;
};

/// How much unsynced content reaches the disk before a power failure.
enum class UnsyncedContent : std::uint8_t { lost, torn, kept };

/// What may be on the disk after a power failure following the first `operations` of a journal: all
/// that was synced; of the rest, content according to `unsynced`, and any subset of the names.
std::vector<DiskContent> possibleContents(const DiskContent& before, const DiskJournal& journal,
                                          std::size_t operations, UnsyncedContent unsynced,
                                          std::mt19937& random);

/// What is certainly on the disk then, under any name.
DiskContent certainContent(const DiskContent& before, const DiskJournal& journal,
                           std::size_t operations);

} // namespace vantoro::testing
