// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <utility>

#include <unistd.h>

namespace vantoro::posix {

/// Owns a file descriptor; closes it on destruction and ignores errors.
class FileDescriptor {
public:
    FileDescriptor() = default;

    explicit FileDescriptor(int number) noexcept : number_(number) {}

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        const FileDescriptor old(std::exchange(number_, other.release()));
        return *this;
    }

    ~FileDescriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }

    int get() const noexcept { return number_; }

    bool isOpen() const noexcept { return number_ >= 0; }

    /// The caller must close it.
    int release() noexcept { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

} // namespace vantoro::posix
