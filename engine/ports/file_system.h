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

/// A file being written. One thread at a time. Every failure is a `FileFailure`. Locked until
/// destroyed, so that nothing else takes it for an abandoned file.
class OutputFile {
public:
    /// Closes and ignores errors; call `close` to see them.
    virtual ~OutputFile() = default;
    /// Writes all of `bytes` at `offset`; on failure, part of them may be written.
    virtual void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) = 0;
    virtual void truncate(std::uint64_t size) = 0;
    /// Returns once everything written is on disk, including the metadata needed to read it back.
    virtual void sync() = 0;
    /// If its folder was removed or moved, recreates the folder and copies the content there.
    virtual void ensureReachable() = 0;
    /// Only `takeName`, `discard` and destruction may follow.
    virtual void close() = 0;
    /// Renames the file, or names an unnamed one, within one file system. Never replaces anything:
    /// throws std::errc::file_exists if the name is taken.
    virtual void takeName(const std::filesystem::path& path) = 0;
    /// Removes the file's name, unless another file has it by now. For clean-up: ignores errors.
    virtual void discard() noexcept = 0;
};

/// A file open for reading at any offset. Any number of threads at once.
class InputFile {
public:
    virtual ~InputFile() = default;
    virtual std::uint64_t size() const = 0;
    /// Returns how many bytes it read: fewer than requested only at the end of the file.
    virtual std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const = 0;
};

/// A lock on a file, held until destroyed or until the process ends.
class FileLock {
public:
    virtual ~FileLock() = default;
};

/// One entry of a folder listing.
struct FolderEntry {
    std::filesystem::path path;
    /// When the content last changed; absent if unknown.
    std::optional<std::filesystem::file_time_type> modified;
};

/// Who may read a new file.
enum class FileAudience : std::uint8_t {
    userOnly,     ///< regardless of the umask; for the hidden temporary file
    asUserPrefers ///< according to the umask
};

/// The file system that holds recordings. Every failure is a `FileFailure`. Any thread.
class FileSystem {
public:
    virtual ~FileSystem() = default;
    /// Creates the folder and its parents; an existing folder is fine.
    virtual void createFolders(const std::filesystem::path& folder) = 0;
    /// True for anything, including a folder or a dangling link.
    virtual bool exists(const std::filesystem::path& path) const = 0;
    /// Removes a file or an empty folder. Throws if nothing is there or a folder is not empty.
    virtual void remove(const std::filesystem::path& path) = 0;
    /// Within one file system. Throws std::errc::file_exists if `to` exists.
    virtual void move(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    /// Returns once the folder's entries (creations, moves, removals) are on disk.
    virtual void syncFolder(const std::filesystem::path& folder) = 0;
    /// Throws std::errc::file_exists if something exists there.
    virtual std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                               FileAudience audience) = 0;
    /// Like `create`, but empties and takes over an abandoned file. Null if the file is in use or
    /// not ours.
    virtual std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                              FileAudience audience) = 0;
    /// Creates a file that has no name until `takeName`, and disappears with the process otherwise.
    /// Null if the folder's file system does not support this.
    virtual std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                                      FileAudience audience) = 0;
    /// Bytes the user may still write there. Throws if unknown. May block on the disk.
    virtual std::uint64_t availableSpace(const std::filesystem::path& folder) const = 0;
    virtual std::unique_ptr<InputFile> open(const std::filesystem::path& path) = 0;
    /// Lists the folder's own entries, hidden ones included.
    virtual std::vector<FolderEntry> list(const std::filesystem::path& folder) = 0;
    /// Null, without waiting, if this or another process holds a lock on the file.
    virtual std::unique_ptr<FileLock> lock(const std::filesystem::path& path) = 0;
};

} // namespace vantoro
