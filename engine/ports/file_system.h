// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace vantoro {

/// A file being written. Used by one thread at a time. Everything throws `FileFailure`.
/// Locked until it is destroyed, so that nobody takes it for one that was left behind.
class OutputFile {
public:
    /// Closes without a word; call `close` to learn whether it worked.
    virtual ~OutputFile() = default;
    /// Writes all of `bytes` at `offset`, or throws with any part of them written.
    virtual void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual void truncate(std::uint64_t size) = 0;
    /// Returns when all that was written is on the disk, with what is needed to read it back.
    virtual void sync() = 0;
    /// Makes the file reachable at the path that it was created with, should its folder have been
    /// removed or moved since: the folder is made again and the file's content copied into it.
    virtual void ensureReachable() = 0;
    /// Nothing may follow but `takeName`, `discard` and destruction.
    virtual void close() = 0;
    /// Gives the file this name in place of the one that it has, if any. Never replaces anything:
    /// throws with std::errc::file_exists when something is there. Within one file system.
    virtual void takeName(const std::filesystem::path& path) = 0;
    /// Removes the file's name, unless it is another file's by now. For clean-up: silent.
    virtual void discard() noexcept = 0;
};

/// A file being read, at any offset. Used by any number of threads at a time.
class InputFile {
public:
    virtual ~InputFile() = default;
    virtual std::uint64_t size() const = 0;
    /// How many bytes were read: fewer than asked for only at the file's end. Throws on failure.
    virtual std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const = 0;
};

/// Keeps others from working on a file for as long as it lives, at the latest until the process
/// ends, however it ends.
class FileLock {
public:
    virtual ~FileLock() = default;
};

/// What a folder's listing says about one thing in it.
struct FolderEntry {
    std::filesystem::path path;
    /// Of its content; nothing where that cannot be told.
    std::optional<std::filesystem::file_time_type> modified;
};

/// Who may read a created file.
enum class FileAudience : std::uint8_t {
    userOnly,     ///< as the hidden temporary file: nobody else, whatever the user's mask
    asUserPrefers ///< the user's mask decides
};

/// The folders and files that recordings live in. Every failure is a `FileFailure`. Any thread.
class FileSystem {
public:
    virtual ~FileSystem() = default;
    /// With its parents; a folder that exists is fine.
    virtual void createFolders(const std::filesystem::path& folder) = 0;
    /// Anything at all counts: a folder, a link that leads nowhere.
    virtual bool exists(const std::filesystem::path& path) const = 0;
    /// A file, or an empty folder: what holds something else is never removed. Throws when there is
    /// nothing to remove.
    virtual void remove(const std::filesystem::path& path) = 0;
    /// Never replaces anything: throws with std::errc::file_exists when something is there. Within
    /// one file system.
    virtual void move(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// Returns when the names in the folder (creations, moves, removals) are on the disk.
    virtual void syncFolder(const std::filesystem::path& folder) = 0;
    /// Throws with std::errc::file_exists when something exists there.
    virtual std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                               FileAudience audience) = 0;
    /// As `create`, but a file that somebody who died left there is emptied and taken over. Null
    /// where somebody else may still use what is there, or it is no file of ours at all.
    virtual std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                              FileAudience audience) = 0;
    /// A file that nobody finds until it takes a name, and that is gone with the process if it
    /// takes none. Null where the folder's file system has no such files.
    virtual std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                                      FileAudience audience) = 0;
    /// Bytes that the user may still write there. Throws where the file system does not count them.
    /// May wait for the disk.
    virtual std::uint64_t availableSpace(const std::filesystem::path& folder) const = 0;
    virtual std::unique_ptr<InputFile> open(const std::filesystem::path& path) = 0;
    /// What lies directly in the folder, hidden things included.
    virtual std::vector<FolderEntry> list(const std::filesystem::path& folder) = 0;
    /// Null, at once, while the file is locked by anybody, in this process or another.
    virtual std::unique_ptr<FileLock> lock(const std::filesystem::path& path) = 0;
};

} // namespace vantoro
