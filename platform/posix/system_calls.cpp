// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/system_calls.h"

namespace vantoro::posix {

FileDescriptor openFile(const std::filesystem::path& path, int flags, FileAction action,
                        mode_t mode) {
    const int number = uninterrupted([&] { return ::open(path.c_str(), flags | O_CLOEXEC, mode); });
    if (number == -1) {
        throw FileFailure(action, path, errno);
    }
    return FileDescriptor(number);
}

struct stat statusOf(const FileDescriptor& file, const std::filesystem::path& path) {
    struct stat status{};

    if (::fstat(file.get(), &status) != 0) {
        throw FileFailure(FileAction::examine, path, errno);
    }
    return status;
}

LockAttempt tryLock(const FileDescriptor& file, short kind, const std::filesystem::path& path) {
    struct flock whole{};

    whole.l_type = kind;
    whole.l_whence = SEEK_SET;
    if (uninterrupted([&] { return ::fcntl(file.get(), F_OFD_SETLK, &whole); }) == 0) {
        return LockAttempt::locked;
    }
    switch (errno) {
    case EAGAIN:
    case EACCES:
        return LockAttempt::heldByOthers;
    case ENOLCK:
    case EINVAL:
    case ENOSYS:
    case EOPNOTSUPP:
        return LockAttempt::unknown;
    default:
        throw FileFailure(FileAction::lock, path, errno);
    }
}

bool isAt(const std::filesystem::path& path, const FileDescriptor& file) {
    struct stat named{};

    if (::lstat(path.c_str(), &named) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) {
            return false;
        }
        throw FileFailure(FileAction::find, path, errno);
    }
    const auto ours = statusOf(file, path);
    return named.st_dev == ours.st_dev && named.st_ino == ours.st_ino;
}

std::size_t readFully(const FileDescriptor& file, std::uint64_t offset, std::span<std::byte> into,
                      const std::filesystem::path& path) {
    std::size_t done = 0;
    while (done < into.size()) {
        const auto rest = into.subspan(done);
        const ssize_t count = uninterrupted([&] {
            return ::pread(file.get(), rest.data(), rest.size(), static_cast<off_t>(offset + done));
        });
        if (count == -1) {
            throw FileFailure(FileAction::read, path, errno);
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return done;
}

void writeFully(const FileDescriptor& file, std::uint64_t offset, std::span<const std::byte> bytes,
                const std::filesystem::path& path) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const auto rest = bytes.subspan(done);
        const ssize_t count = uninterrupted([&] {
            return ::pwrite(file.get(), rest.data(), rest.size(),
                            static_cast<off_t>(offset + done));
        });
        if (count <= 0) { // no progress and no error: would loop forever
            throw FileFailure(FileAction::write, path, count == 0 ? EIO : errno);
        }
        done += static_cast<std::size_t>(count);
    }
}

void syncNames(const FileDescriptor& folder, const std::filesystem::path& path) {
    const bool synced = uninterrupted([&] { return ::fsync(folder.get()); }) == 0;
    if (!synced && errno != EINVAL && errno != ENOTSUP) {
        throw FileFailure(FileAction::write, path, errno);
    }
}

} // namespace vantoro::posix
