// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_file_lock.h"

#include "platform/posix/system_calls.h"

namespace vantoro::posix {

std::unique_ptr<PosixFileLock> PosixFileLock::tryAcquire(const std::filesystem::path& path) {
    // Do not wait for the other end of a pipe.
    constexpr int flags = O_NONBLOCK | O_CLOEXEC;
    short kind = F_WRLCK;
    FileDescriptor file(uninterrupted([&] { return ::open(path.c_str(), O_RDWR | flags); }));
    if (!file.isOpen() && (errno == EACCES || errno == EROFS)) {
        kind = F_RDLCK;
        file = openFile(path, O_RDONLY | flags, FileAction::open);
    } else if (!file.isOpen()) {
        throwFailure(FileAction::open, path, errno);
    }
    if (tryLock(file, kind, path) == LockAttempt::heldByOthers) {
        return nullptr;
    }
    return std::make_unique<PosixFileLock>(std::move(file));
}

} // namespace vantoro::posix
