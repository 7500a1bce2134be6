// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <utility>

#include "engine/ports/file_system.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::posix {

class PosixFileLock final : public FileLock {
public:
    /// Null if the file is locked elsewhere. Throws if it cannot be opened.
    static std::unique_ptr<PosixFileLock> tryAcquire(const std::filesystem::path& path);

    explicit PosixFileLock(FileDescriptor file) noexcept : file_(std::move(file)) {}

private:
    FileDescriptor file_; // closing it releases the lock
};

} // namespace vantoro::posix
