// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "engine/ports/file_system.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::posix {

/// Reads at given offsets without a file position, so that threads may share it.
class PosixInputFile final : public InputFile {
public:
    /// Throws if it is not a regular file (reading a pipe would block).
    explicit PosixInputFile(std::filesystem::path path);

    /// The current size: a file still being written grows.
    std::uint64_t size() const override;
    std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const override;

private:
    std::filesystem::path path_;
    FileDescriptor file_;
};

} // namespace vantoro::posix
