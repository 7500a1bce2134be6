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

/// What a disk was told to do, one thing after another.
struct DiskOperation {
    enum class Kind : std::uint8_t {
        create, ///< without a path: without a name
        name,
        write,
        truncate,
        syncFile,
        syncFolder,
        move,
        remove
    };

    // NOLINTBEGIN(readability-redundant-member-init): what has none must always be named
    Kind kind = Kind::create;
    std::size_t file = 0;           ///< by the order of creation; of all but folders
    std::filesystem::path path{};   ///< of what has a name
    std::filesystem::path target{}; ///< of a move
    std::uint64_t offset = 0;       ///< of a write; the size of a truncation
    std::vector<std::byte> bytes{}; ///< of a write
    // NOLINTEND(readability-redundant-member-init)
};

using DiskJournal = std::vector<DiskOperation>;
using DiskContent = std::map<std::filesystem::path, std::vector<std::byte>>;

/// One folder's files in memory, with a journal of everything done to them. Any thread.
class JournalingDisk final : public FileSystem {
public:
    /// With these files, all of them safe.
    explicit JournalingDisk(DiskContent content = {});

    DiskJournal journal() const;
    DiskContent content() const;
    /// Waits until a file was created without a name; false when none was within half a minute.
    bool waitForUnnamedFile();

    void createFolders(const std::filesystem::path&) override {}

    bool exists(const std::filesystem::path& path) const override;
    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;

    /// Whoever left something there has died.
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

/// What of a file's content that was not synced reaches the disk before the power fails.
enum class UnsyncedContent : std::uint8_t { lost, torn, kept };

/// What may be on the disk when the power fails after the first operations of a journal: what was
/// synced, and of the rest anything: contents as given, and each name or not.
std::vector<DiskContent> possibleContents(const DiskContent& before, const DiskJournal& journal,
                                          std::size_t operations, UnsyncedContent unsynced,
                                          std::mt19937& random);

/// What is on the disk for certain by then, under any name.
DiskContent certainContent(const DiskContent& before, const DiskJournal& journal,
                           std::size_t operations);

} // namespace vantoro::testing
