// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <utility>

#include "engine/ports/file_system.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::posix {

class PosixFileLock final : public FileLock {
public:
    /// Null while somebody else has the file locked. Throws when it cannot be opened.
    static std::unique_ptr<PosixFileLock> tryTo(const std::filesystem::path& path);

    explicit PosixFileLock(FileDescriptor file) noexcept : file_(std::move(file)) {}

private:
    FileDescriptor file_; // which the lock ends with
};

} // namespace vantoro::posix
