// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_file_system.h"

#include <cstdio>
#include <system_error>
#include <utility>

#include "platform/posix/posix_output_file.h"
#include "platform/posix/renaming.h"
#include "platform/posix/system_calls.h"

namespace vantoro::posix {

namespace {

/// Reads at given offsets without a file position, so that threads may share it.
class PosixInputFile final : public InputFile {
public:
    /// Throws if it is not a regular file (reading a pipe would block).
    explicit PosixInputFile(std::filesystem::path path)
        : path_(std::move(path)), file_(openFile(path_, O_RDONLY | O_NONBLOCK, FileAction::open)) {
        const auto status = statusOf(file_, path_);
        if (!S_ISREG(status.st_mode)) {
            throw FileFailure(FileAction::open, path_, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
        }
    }

    /// The current size: a file still being written grows.
    std::uint64_t size() const override {
        return static_cast<std::uint64_t>(statusOf(file_, path_).st_size);
    }

    std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const override {
        return readFully(file_, offset, into, path_);
    }

private:
    std::filesystem::path path_;
    FileDescriptor file_;
};

struct PosixFileLock final : FileLock {
    explicit PosixFileLock(FileDescriptor locked) noexcept : file(std::move(locked)) {}

    FileDescriptor file; // closing it releases the lock
};

} // namespace

void PosixFileSystem::createFolders(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw FileFailure(FileAction::createFolder, folder, error.value());
    }
}

bool PosixFileSystem::exists(const std::filesystem::path& path) const {
    struct stat status{};

    if (::lstat(path.c_str(), &status) == 0) {
        return true;
    }
    if (errno != ENOENT && errno != ENOTDIR) {
        throw FileFailure(FileAction::find, path, errno);
    }
    return false;
}

void PosixFileSystem::remove(const std::filesystem::path& path) {
    if (std::remove(path.c_str()) != 0) {
        throw FileFailure(FileAction::remove, path, errno);
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
        throw FileFailure(FileAction::countFreeSpace, folder, error ? error.value() : ENOTSUP);
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
        throw FileFailure(FileAction::list, folder, error.value());
    }
    return entries;
}

std::unique_ptr<FileLock> PosixFileSystem::lock(const std::filesystem::path& path) {
    // Do not wait for the other end of a pipe.
    constexpr int flags = O_NONBLOCK | O_CLOEXEC;
    short kind = F_WRLCK;
    FileDescriptor file(uninterrupted([&] { return ::open(path.c_str(), O_RDWR | flags); }));
    if (!file.isOpen() && (errno == EACCES || errno == EROFS)) {
        kind = F_RDLCK;
        file = openFile(path, O_RDONLY | flags, FileAction::open);
    } else if (!file.isOpen()) {
        throw FileFailure(FileAction::open, path, errno);
    }
    if (tryLock(file, kind, path) == LockAttempt::heldByOthers) {
        return nullptr;
    }
    return std::make_unique<PosixFileLock>(std::move(file));
}

} // namespace vantoro::posix
