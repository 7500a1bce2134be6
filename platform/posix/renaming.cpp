// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/renaming.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/system_calls.h"

namespace vantoro::posix {

namespace {

/// Whether the operation is unsupported, which file systems report in several ways.
bool isUnsupported(int errorNumber) {
    return errorNumber == EINVAL || errorNumber == ENOSYS || errorNumber == EOPNOTSUPP ||
           errorNumber == EPERM || errorNumber == EMLINK;
}

} // namespace

bool renameInOneStep(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    if (!isUnsupported(errno)) {
        throw FileFailure(FileAction::create, to, errno);
    }
    return false;
}

bool renameByLink(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::link(from.c_str(), to.c_str()) != 0) {
        if (!isUnsupported(errno)) {
            throw FileFailure(FileAction::create, to, errno);
        }
        return false;
    }
    if (::unlink(from.c_str()) != 0) {
        const int reason = errno;
        ::unlink(to.c_str()); // our own link
        throw FileFailure(FileAction::remove, from, reason);
    }
    return true;
}

bool renameOverOwnFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    constexpr mode_t nobodyYet = 0;
    openFile(to, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, FileAction::create, nobodyYet);
    if (::rename(from.c_str(), to.c_str()) != 0) {
        const int reason = errno;
        ::unlink(to.c_str());
        throw FileFailure(FileAction::create, to, reason);
    }
    return true;
}

void renameWithoutReplacing(const std::filesystem::path& from, const std::filesystem::path& to) {
    static_cast<void>(renameInOneStep(from, to) || renameByLink(from, to) ||
                      renameOverOwnFile(from, to));
}

} // namespace vantoro::posix
