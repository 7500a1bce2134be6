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

/// A function, so that `errno` is read before anything that may change it.
[[noreturn]] void throwFailure(FileAction action, const std::filesystem::path& path,
                               int errorNumber);

/// Repeats a system call for as long as a signal interrupts it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// Not inherited by programs that we start. Throws.
FileDescriptor openFile(const std::filesystem::path& path, int flags, FileAction action,
                        mode_t mode = 0);

/// The same open file under a second number. Throws.
FileDescriptor duplicate(const FileDescriptor& file, const std::filesystem::path& path);

struct stat statusOf(const FileDescriptor& file, const std::filesystem::path& path);

enum class LockAttempt : std::uint8_t {
    locked,
    heldByOthers,
    unknown ///< the file system has no locks: nobody can be told apart
};

/// Locks the file for whoever has it open now, until the last copy of the descriptor is closed.
/// `kind`: F_WRLCK, or F_RDLCK for a file that is open for reading only.
LockAttempt tryLock(const FileDescriptor& file, short kind, const std::filesystem::path& path);

/// Whether the path leads to this very file, and not by a link. Throws when that cannot be told.
bool isAt(const std::filesystem::path& path, const FileDescriptor& file);

/// As many bytes as there are, up to `into.size()`; fewer only at the file's end. Throws.
std::size_t readFully(const FileDescriptor& file, std::uint64_t offset, std::span<std::byte> into,
                      const std::filesystem::path& path);

/// Throws with any part of the bytes written.
void writeFully(const FileDescriptor& file, std::uint64_t offset, std::span<const std::byte> bytes,
                const std::filesystem::path& path);

/// The content, and its length. Throws.
void syncContent(const FileDescriptor& file, const std::filesystem::path& path);

/// The names in a folder, where its file system has a way to do that. Throws.
void syncNames(const FileDescriptor& folder, const std::filesystem::path& path);

/// Throws what the system had to say at last: some report a failed write only here.
void closeChecked(FileDescriptor file, const std::filesystem::path& path);

} // namespace vantoro::posix
