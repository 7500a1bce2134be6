// SPDX-License-Identifier: GPL-3.0-or-later

// Preloaded into a program, has it meet a disk that does not answer: a call to the file system
// never returns, as with a network disk whose server is gone. The environment says which:
//   VANTORO_HANG_CALL    mkdir, open, fsync, fdatasync or rename, be it by a link
//   VANTORO_HANG_FROM    from its how manieth time on (1 for the first)
//   VANTORO_HANG_UNDER   on what lies in this folder, or is it
//   VANTORO_HANG_MARK    the file that is made when it hangs

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::string_view setting(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool isUnder(std::string_view path) {
    const auto folder = setting("VANTORO_HANG_UNDER");
    return !folder.empty() && path.starts_with(folder) &&
           (path.size() == folder.size() || path[folder.size()] == '/');
}

std::string pathOf(int descriptor) {
    std::array<char, 4096> path{};
    const auto link = "/proc/self/fd/" + std::to_string(descriptor);
    const auto length = ::readlink(link.c_str(), path.data(), path.size());
    return length > 0 ? std::string(path.data(), static_cast<std::size_t>(length)) : std::string();
}

void hangIfDue(std::string_view call, std::string_view path) {
    static std::atomic<int> count = 0;
    if (call != setting("VANTORO_HANG_CALL") || !isUnder(path) ||
        ++count < std::atoi(std::string(setting("VANTORO_HANG_FROM")).c_str())) {
        return;
    }
    const std::string mark(setting("VANTORO_HANG_MARK"));
    ::close(static_cast<int>(
        ::syscall(SYS_openat, AT_FDCWD, mark.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)));
    for (;;) {
        ::pause();
    }
}

/// The library's own function of this name.
template <class Function>
Function* next(const char* name) {
    void* const found = ::dlsym(RTLD_NEXT, name);
    Function* function = nullptr;
    static_assert(sizeof function == sizeof found);
    std::memcpy(&function, &found, sizeof function);
    return function;
}

} // namespace

extern "C" {

int mkdir(const char* path, mode_t mode) noexcept {
    hangIfDue("mkdir", path);
    static auto* const function = next<int(const char*, mode_t)>("mkdir");
    return function(path, mode);
}

int open(const char* path, int flags, ...) {
    hangIfDue("open", path);
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t); // without meaning where there is none
    va_end(arguments);
    static auto* const function = next<int(const char*, int, ...)>("open");
    return function(path, flags, mode);
}

int fsync(int file) {
    hangIfDue("fsync", pathOf(file));
    static auto* const function = next<int(int)>("fsync");
    return function(file);
}

int fdatasync(int file) {
    hangIfDue("fdatasync", pathOf(file));
    static auto* const function = next<int(int)>("fdatasync");
    return function(file);
}

int rename(const char* from, const char* to) noexcept {
    hangIfDue("rename", to);
    static auto* const function = next<int(const char*, const char*)>("rename");
    return function(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
              unsigned int flags) noexcept {
    hangIfDue("rename", to);
    static auto* const function =
        next<int(int, const char*, int, const char*, unsigned int)>("renameat2");
    return function(fromFolder, from, toFolder, to, flags);
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    hangIfDue("rename", to);
    static auto* const function = next<int(int, const char*, int, const char*, int)>("linkat");
    return function(fromFolder, from, toFolder, to, flags);
}

} // extern "C"
