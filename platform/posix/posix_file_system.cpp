// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_file_system.h"

#include <cstdio>
#include <system_error>

#include "platform/posix/posix_file_lock.h"
#include "platform/posix/posix_input_file.h"
#include "platform/posix/posix_output_file.h"
#include "platform/posix/renaming.h"
#include "platform/posix/system_calls.h"

namespace vantoro::posix {

void PosixFileSystem::createFolders(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throwFailure(FileAction::createFolder, folder, error.value());
    }
}

bool PosixFileSystem::exists(const std::filesystem::path& path) const {
    struct stat status{};

    if (::lstat(path.c_str(), &status) == 0) {
        return true;
    }
    if (errno != ENOENT && errno != ENOTDIR) {
        throwFailure(FileAction::find, path, errno);
    }
    return false;
}

void PosixFileSystem::remove(const std::filesystem::path& path) {
    if (std::remove(path.c_str()) != 0) {
        throwFailure(FileAction::remove, path, errno);
    }
}

void PosixFileSystem::move(const std::filesystem::path& from, const std::filesystem::path& to) {
    renameWithoutReplacing(from, to);
}

void PosixFileSystem::syncFolder(const std::filesystem::path& folder) {
    // A path without a folder is relative to the current directory.
    const auto& path = folder.empty() ? std::filesystem::path(".") : folder;
    syncNames(openFile(path, O_RDONLY | O_DIRECTORY, FileAction::open), path);
}

std::unique_ptr<OutputFile> PosixFileSystem::create(const std::filesystem::path& path,
                                                    FileAudience audience) {
    return std::make_unique<PosixOutputFile>(path, audience);
}

std::unique_ptr<OutputFile> PosixFileSystem::claim(const std::filesystem::path& path,
                                                   FileAudience audience) {
    return PosixOutputFile::claim(path, audience);
}

std::unique_ptr<OutputFile> PosixFileSystem::createUnnamed(const std::filesystem::path& folder,
                                                           FileAudience audience) {
    return PosixOutputFile::createUnnamed(folder.empty() ? "." : folder, audience);
}

std::uint64_t PosixFileSystem::availableSpace(const std::filesystem::path& folder) const {
    std::error_code error;
    const auto space = std::filesystem::space(folder.empty() ? "." : folder, error);
    if (error || space.capacity == 0) {
        throwFailure(FileAction::countFreeSpace, folder, error ? error.value() : ENOTSUP);
    }
    return space.available;
}

std::unique_ptr<InputFile> PosixFileSystem::open(const std::filesystem::path& path) {
    return std::make_unique<PosixInputFile>(path);
}

std::vector<FolderEntry> PosixFileSystem::list(const std::filesystem::path& folder) {
    std::vector<FolderEntry> entries;
    std::error_code error;
    std::filesystem::directory_iterator next(folder, error);
    while (!error && next != std::filesystem::directory_iterator()) {
        std::error_code unknown;
        const auto modified = next->last_write_time(unknown);
        entries.push_back({next->path(), unknown ? std::nullopt : std::optional(modified)});
        next.increment(error);
    }
    if (error) {
        throwFailure(FileAction::list, folder, error.value());
    }
    return entries;
}

std::unique_ptr<FileLock> PosixFileSystem::lock(const std::filesystem::path& path) {
    return PosixFileLock::tryAcquire(path);
}

} // namespace vantoro::posix
