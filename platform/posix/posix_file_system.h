// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/file_system.h"

namespace vantoro::posix {

/// The machine's own file system. Has no state: every call, and every file, stands for itself.
class PosixFileSystem final : public FileSystem {
public:
    void createFolders(const std::filesystem::path& folder) override;
    bool exists(const std::filesystem::path& path) const override;
    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;
    /// Where the file system has no locks, nothing is taken over.
    std::unique_ptr<OutputFile> claim(const std::filesystem::path& path,
                                      FileAudience audience) override;
    std::unique_ptr<OutputFile> createUnnamed(const std::filesystem::path& folder,
                                              FileAudience audience) override;
    std::uint64_t availableSpace(const std::filesystem::path& folder) const override;
    std::unique_ptr<InputFile> open(const std::filesystem::path& path) override;
    std::vector<FolderEntry> list(const std::filesystem::path& folder) override;
    std::unique_ptr<FileLock> lock(const std::filesystem::path& path) override;
};

} // namespace vantoro::posix
