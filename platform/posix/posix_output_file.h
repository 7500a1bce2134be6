// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>

#include "engine/ports/file_system.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::posix {

class PosixOutputFile final : public OutputFile {
public:
    /// Creates the file; throws if anything exists there, even a dangling link.
    PosixOutputFile(const std::filesystem::path& path, FileAudience audience);

    /// Creates the file, or takes over an abandoned one; null if neither is possible.
    static std::unique_ptr<PosixOutputFile> claim(const std::filesystem::path& path,
                                                  FileAudience audience);

    /// Creates a file without a name; null if the folder's file system does not support it.
    static std::unique_ptr<PosixOutputFile> createUnnamed(const std::filesystem::path& folder,
                                                          FileAudience audience);

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncate(std::uint64_t size) override;
    /// The first call also syncs the file's name, without which the content is lost.
    void sync() override;
    /// If another file is at the path, leaves it alone and throws.
    void ensureReachable() override;
    void close() override;
    void takeName(const std::filesystem::path& path) override;
    void discard() noexcept override;

private:
    PosixOutputFile(std::filesystem::path path, FileAudience audience, FileDescriptor folder,
                    FileDescriptor file);
    void copyContentTo(PosixOutputFile& target) const;

    std::filesystem::path path_; // absolute: the current directory may change
    bool hasName_ = true;
    FileAudience audience_;
    FileDescriptor folder_; // open until the name is synced, even if moved
    FileDescriptor file_;
    FileDescriptor lock_; // keeps the file's lock after `close`
};

} // namespace vantoro::posix
