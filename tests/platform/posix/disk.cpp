// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/posix/disk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

/// Mounts in a private mount namespace, so that no mount outlives the test.
bool mountMemoryDisk(const std::filesystem::path& folder, const std::string& options,
                     unsigned long flags) {
    return ::unshare(CLONE_NEWNS) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", folder.c_str(), "tmpfs", flags, options.c_str()) == 0;
}

} // namespace

SmallDisk::SmallDisk(std::size_t size)
    : mounted_(mountMemoryDisk(folder_.path(), "size=" + std::to_string(size), 0)), size_(size) {
    if (mounted_) {
        return;
    }
    ::getrlimit(RLIMIT_FSIZE, &limitBefore_);
    std::signal(SIGXFSZ, SIG_IGN);
    limitFiles(size);
}

SmallDisk::~SmallDisk() {
    if (mounted_) {
        ::umount2(path().c_str(), MNT_DETACH);
    } else {
        ::setrlimit(RLIMIT_FSIZE, &limitBefore_);
    }
}

int SmallDisk::errorWhenFull() const {
    return mounted_ ? ENOSPC : EFBIG;
}

void SmallDisk::fill() {
    if (mounted_) {
        std::ofstream(path() / "filler") << std::string(size_, 'f'); // as much as fits
    } else {
        limitFiles(1);
    }
}

void SmallDisk::empty() {
    if (mounted_) {
        std::filesystem::remove(path() / "filler");
    } else {
        limitFiles(size_);
    }
}

void SmallDisk::limitFiles(std::size_t size) const {
    auto limit = limitBefore_;
    limit.rlim_cur = size;
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) {
        throw std::system_error(errno, std::system_category(), "setrlimit");
    }
}

ReadOnlyFolder::ReadOnlyFolder()
    : mounted_(mountMemoryDisk(folder_.path(), "", MS_RDONLY)), path_(folder_.path()) {
    if (!mounted_) {
        ::chmod(path_.c_str(), 0555);
        if (::access(path_.c_str(), W_OK) == 0) {
            path_ = "/proc"; // root ignores permissions even without mounting
        }
    }
}

ReadOnlyFolder::~ReadOnlyFolder() {
    if (mounted_) {
        ::umount2(folder_.path().c_str(), MNT_DETACH);
    }
}

Mask::Mask(mode_t mask) : before_(::umask(mask)) {}

Mask::~Mask() {
    ::umask(before_);
}

std::vector<std::byte> bytesOf(const std::string& text) {
    std::vector<std::byte> bytes(text.size());
    std::ranges::transform(text, bytes.begin(), [](char c) { return static_cast<std::byte>(c); });
    return bytes;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("no file at " + path.string());
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary);
    if (!(file << content << std::flush)) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

mode_t permissionsOf(const std::filesystem::path& path) {
    return static_cast<mode_t>(std::filesystem::status(path).permissions());
}

void expectFailure(const std::function<void()>& work, const std::string& text) {
    try {
        work();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.what(), text);
    }
}

std::string reason(int errorNumber) {
    return std::system_category().message(errorNumber);
}

} // namespace vantoro::testing
