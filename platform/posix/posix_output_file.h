// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>

#include "engine/ports/file_system.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::posix {

class PosixOutputFile final : public OutputFile {
public:
    /// Creates the file; throws when anything exists there, be it a link that leads nowhere.
    PosixOutputFile(const std::filesystem::path& path, FileAudience audience);

    /// Creates the file, or takes over one that was left behind; null where neither can be had.
    static std::unique_ptr<PosixOutputFile> claim(const std::filesystem::path& path,
                                                  FileAudience audience);

    /// A file without a name; null where the folder's file system has none.
    static std::unique_ptr<PosixOutputFile> createUnnamed(const std::filesystem::path& folder,
                                                          FileAudience audience);

    void writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncate(std::uint64_t size) override;
    /// The first time the file's name is put on the disk too: without it nobody finds the content.
    void sync() override;
    /// Leaves what may now lie at the path alone, and throws, when it is not our file.
    void ensureReachable() override;
    void close() override;
    void takeName(const std::filesystem::path& path) override;
    void discard() noexcept override;

private:
    PosixOutputFile(std::filesystem::path path, FileAudience audience, FileDescriptor folder,
                    FileDescriptor file);
    void copyContentTo(PosixOutputFile& target) const;

    std::filesystem::path path_; // absolute: the program's folder may change
    bool hasName_ = true;
    FileAudience audience_;
    FileDescriptor folder_; // open until the name is on the disk, wherever it is moved to
    FileDescriptor file_;
    FileDescriptor lock_; // shares the file's lock, and keeps it when the file is closed
};

} // namespace vantoro::posix
