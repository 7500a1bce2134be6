// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_input_file.h"

#include <utility>

#include "platform/posix/system_calls.h"

namespace vantoro::posix {

PosixInputFile::PosixInputFile(std::filesystem::path path)
    : path_(std::move(path)), file_(openFile(path_, O_RDONLY | O_NONBLOCK, FileAction::open)) {
    const auto status = statusOf(file_, path_);
    if (!S_ISREG(status.st_mode)) {
        throwFailure(FileAction::open, path_, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    }
}

std::uint64_t PosixInputFile::size() const {
    return static_cast<std::uint64_t>(statusOf(file_, path_).st_size);
}

std::size_t PosixInputFile::readAt(std::uint64_t offset, std::span<std::byte> into) const {
    return readFully(file_, offset, into, path_);
}

} // namespace vantoro::posix
