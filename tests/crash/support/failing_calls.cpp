// SPDX-License-Identifier: GPL-3.0-or-later

// A preloaded library that intercepts a program's file calls and makes them fail as `FailurePlan`
// says.

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/crash/support/failure_plan.h"

namespace {

using vantoro::testing::FailurePlan;
using vantoro::testing::Fate;
using vantoro::testing::pathOf;

long long sizeOf(int descriptor) {
    struct stat status{};

    return descriptor >= 0 && ::fstat(descriptor, &status) == 0 ? status.st_size : -1;
}

/// Makes the call or fails it; a failing call still does `onFailure`.
template <class Call, class OnFailure>
auto made(const char* kind, const std::string& path, const std::string& role, int descriptor,
          Call call, OnFailure onFailure) -> decltype(call()) {
    FailurePlan& plan = FailurePlan::shared();
    if (!plan.concerns(path)) {
        return call();
    }
    std::string name = std::string(kind) + " " + role;
    switch (plan.meet(name)) {
    case Fate::hangs:
        plan.log(name, "hangs");
        for (;;) {
            ::pause();
        }
    case Fate::dies:
        plan.log(name, "dies");
        ::kill(::getpid(), SIGKILL);
        ::pause();
        [[fallthrough]];
    case Fate::fails:
        onFailure();
        plan.log(name, "fails");
        errno = plan.error();
        return -1;
    case Fate::succeeds:
        break;
    }
    const long long size = sizeOf(descriptor);
    const auto result = call();
    const int error = errno;
    plan.log(name, result < 0 ? std::to_string(-error) : "succeeds", size);
    errno = error;
    return result;
}

constexpr auto nothing = [] {};

template <class Call, class OnFailure = decltype(nothing)>
auto madeOn(const char* kind, int descriptor, Call call, OnFailure onFailure = nothing) {
    const std::string path = pathOf(descriptor);
    return made(kind, path, FailurePlan::shared().role(path), descriptor, call, onFailure);
}

template <class Call>
auto madeAt(const char* kind, const std::string& path, Call call) {
    return made(kind, path, FailurePlan::shared().role(path), -1, call, nothing);
}

int opened(int folder, const char* path, int flags, mode_t mode) {
    const std::string full = pathOf(folder, path);
    const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
    return made(
        "open", full, isUnnamed ? "unnamed" : FailurePlan::shared().role(full), -1,
        [&] { return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode)); },
        nothing);
}

mode_t modeIn(int flags, std::va_list arguments) {
    const bool isThere = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return isThere ? va_arg(arguments, mode_t) : 0;
}

ssize_t written(int file, const void* bytes, std::size_t count, off_t offset) {
    const auto write = [&](std::size_t part) {
        return static_cast<ssize_t>(::syscall(SYS_pwrite64, file, bytes, part, offset));
    };
    // A disk that fails during a write has written a part of it.
    return madeOn(
        "pwrite", file, [&] { return write(count); }, [&] { static_cast<void>(write(count / 2)); });
}

ssize_t readFrom(int file, void* bytes, std::size_t count, off_t offset) {
    FailurePlan& plan = FailurePlan::shared();
    if (plan.isGone() && plan.concerns(pathOf(file))) {
        errno = EIO;
        return -1;
    }
    return static_cast<ssize_t>(::syscall(SYS_pread64, file, bytes, count, offset));
}

int renamed(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
    FailurePlan::shared().keep(pathOf(fromFolder, from));
    return madeAt("rename", pathOf(toFolder, to), [&] {
        return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
    });
}

int linked(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
    return madeAt("link", pathOf(toFolder, to), [&] {
        return static_cast<int>(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
    });
}

int removed(int folder, const char* path, int flags) {
    FailurePlan::shared().keep(pathOf(folder, path));
    return madeAt("unlink", pathOf(folder, path),
                  [&] { return static_cast<int>(::syscall(SYS_unlinkat, folder, path, flags)); });
}

int folderMade(int folder, const char* path, mode_t mode) {
    return madeAt("mkdir", pathOf(folder, path),
                  [&] { return static_cast<int>(::syscall(SYS_mkdirat, folder, path, mode)); });
}

int controlled(int file, int command, void* argument) {
    const auto control = [&] {
        return static_cast<int>(::syscall(SYS_fcntl, file, command, argument));
    };
    return command == F_OFD_SETLK ? madeOn("lock", file, control) : control();
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return opened(AT_FDCWD, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return opened(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return opened(folder, path, flags, mode);
}

int openat64(int folder, const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeIn(flags, arguments);
    va_end(arguments);
    return opened(folder, path, flags, mode);
}

// The compiler emits these for calls of `open` with unknown flags.
int __open_2(const char* path, int flags) { // NOLINT(bugprone-reserved-identifier)
    return opened(AT_FDCWD, path, flags, 0);
}

int __open64_2(const char* path, int flags) { // NOLINT(bugprone-reserved-identifier)
    return opened(AT_FDCWD, path, flags, 0);
}

int close(int file) {
    const auto close = [&] { return static_cast<int>(::syscall(SYS_close, file)); };
    // A failing close still closes.
    return madeOn("close", file, close, [&] { static_cast<void>(close()); });
}

ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t offset) {
    return written(file, bytes, count, offset);
}

ssize_t pwrite64(int file, const void* bytes, std::size_t count, off64_t offset) {
    return written(file, bytes, count, offset);
}

ssize_t pread(int file, void* bytes, std::size_t count, off_t offset) {
    return readFrom(file, bytes, count, offset);
}

ssize_t pread64(int file, void* bytes, std::size_t count, off64_t offset) {
    return readFrom(file, bytes, count, offset);
}

ssize_t write(int file, const void* bytes, std::size_t count) {
    return madeOn("write", file,
                  [&] { return static_cast<ssize_t>(::syscall(SYS_write, file, bytes, count)); });
}

int fsync(int file) {
    return madeOn("fsync", file, [&] { return static_cast<int>(::syscall(SYS_fsync, file)); });
}

int fdatasync(int file) {
    return madeOn("fdatasync", file,
                  [&] { return static_cast<int>(::syscall(SYS_fdatasync, file)); });
}

int ftruncate(int file, off_t size) noexcept {
    return madeOn("ftruncate", file,
                  [&] { return static_cast<int>(::syscall(SYS_ftruncate, file, size)); });
}

int ftruncate64(int file, off64_t size) noexcept {
    return madeOn("ftruncate", file,
                  [&] { return static_cast<int>(::syscall(SYS_ftruncate, file, size)); });
}

int rename(const char* from, const char* to) noexcept {
    return renamed(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return renamed(fromFolder, from, toFolder, to, 0);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned flags) noexcept {
    return renamed(fromFolder, from, toFolder, to, flags);
}

int link(const char* from, const char* to) noexcept {
    return linked(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    return linked(fromFolder, from, toFolder, to, flags);
}

int unlink(const char* path) noexcept {
    return removed(AT_FDCWD, path, 0);
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    return removed(folder, path, flags);
}

int rmdir(const char* path) noexcept {
    return removed(AT_FDCWD, path, AT_REMOVEDIR);
}

// The C library's `remove` bypasses the `unlink` above.
int remove(const char* path) noexcept {
    struct stat status{};

    const bool isFolder = ::lstat(path, &status) == 0 && S_ISDIR(status.st_mode);
    return removed(AT_FDCWD, path, isFolder ? AT_REMOVEDIR : 0);
}

int mkdir(const char* path, mode_t mode) noexcept {
    return folderMade(AT_FDCWD, path, mode);
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    return folderMade(folder, path, mode);
}

int fcntl(int file, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return controlled(file, command, argument);
}

int fcntl64(int file, int command, ...) {
    std::va_list arguments;
    va_start(arguments, command);
    void* const argument = va_arg(arguments, void*);
    va_end(arguments);
    return controlled(file, command, argument);
}

int statvfs(const char* path, struct statvfs* status) noexcept {
    using Function = int (*)(const char*, struct statvfs*);
    static const auto next = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "statvfs"));
    return madeAt("statvfs", pathOf(AT_FDCWD, path), [&] { return next(path, status); });
}

} // extern "C"
