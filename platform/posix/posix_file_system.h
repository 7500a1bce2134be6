// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/file_system.h"

namespace vantoro::posix {

/// The machine's file system. Stateless: calls and files are independent.
class PosixFileSystem final : public FileSystem {
public:
    void createFolders(const std::filesystem::path& folder) override;
    bool exists(const std::filesystem::path& path) const override;
    void remove(const std::filesystem::path& path) override;
    void move(const std::filesystem::path& from, const std::filesystem::path& to) override;
    void syncFolder(const std::filesystem::path& folder) override;
    std::unique_ptr<OutputFile> create(const std::filesystem::path& path,
                                       FileAudience audience) override;
    /// Takes nothing over if the file system has no locks.
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
