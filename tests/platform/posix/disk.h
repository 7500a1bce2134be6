// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/types.h>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

/// A disk of `size` bytes. If mounting is not permitted, a file size limit stands in: the same
/// writes fail, for another reason.
class SmallDisk {
public:
    explicit SmallDisk(std::size_t size);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    const std::filesystem::path& path() const { return folder_.path(); }

    int errorWhenFull() const;
    /// Fills the disk up to a few bytes; `empty` undoes it.
    void fill();
    void empty();

private:
    TemporaryFolder folder_;
    bool mounted_;
    std::size_t size_;
    rlimit limitBefore_{};

    void limitFiles(std::size_t size) const;
};

/// A folder in which nothing can be created, if possible not even by root.
class ReadOnlyFolder {
public:
    ReadOnlyFolder();
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
    ~ReadOnlyFolder();

    const std::filesystem::path& path() const { return path_; }

private:
    TemporaryFolder folder_;
    bool mounted_;
    std::filesystem::path path_;
};

/// Sets the umask temporarily.
class Mask {
public:
    explicit Mask(mode_t mask);
    Mask(const Mask&) = delete;
    Mask& operator=(const Mask&) = delete;
    ~Mask();

private:
    mode_t before_;
};

std::vector<std::byte> bytesOf(const std::string& text);
/// Reads with the C++ library.
std::string contentOf(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);
mode_t permissionsOf(const std::filesystem::path& path);

/// Expects the work to throw a std::system_error with this text.
void expectFailure(const std::function<void()>& work, const std::string& text);
/// The system's error text.
std::string reason(int errorNumber);

} // namespace vantoro::testing
