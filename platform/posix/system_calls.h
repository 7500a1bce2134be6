// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include "engine/failure.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::posix {

// What throws, throws `FileFailure`.

/// Repeats a system call while signals interrupt it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Opens a file that child processes do not inherit. Throws.
FileDescriptor openFile(const std::filesystem::path& path, int flags, FileAction action,
                        mode_t mode = 0);

struct stat statusOf(const FileDescriptor& file, const std::filesystem::path& path);

enum class LockAttempt : std::uint8_t {
    locked,
    heldByOthers,
    unknown ///< the file system has no locks
};

/// Locks until the last copy of the descriptor is closed. `kind`: F_WRLCK; F_RDLCK if read-only.
LockAttempt tryLock(const FileDescriptor& file, short kind, const std::filesystem::path& path);

/// Whether the path names this file, not through a link. Throws if that cannot be checked.
bool isAt(const std::filesystem::path& path, const FileDescriptor& file);

/// Reads up to `into.size()` bytes; fewer only at the end of the file. Throws.
std::size_t readFully(const FileDescriptor& file, std::uint64_t offset, std::span<std::byte> into,
                      const std::filesystem::path& path);

/// Writes all bytes; on failure, part of them may be written. Throws.
void writeFully(const FileDescriptor& file, std::uint64_t offset, std::span<const std::byte> bytes,
                const std::filesystem::path& path);

/// Syncs the entries of a folder, if its file system supports that. Throws.
void syncNames(const FileDescriptor& folder, const std::filesystem::path& path);

} // namespace vantoro::posix
