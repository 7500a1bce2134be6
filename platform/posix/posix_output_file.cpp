// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_output_file.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_calls.h"

namespace vantoro::posix {

namespace {

mode_t modeFor(FileAudience audience) {
    constexpr mode_t userReadsAndWrites = 0600;
    constexpr mode_t allReadAndWrite = 0666; // less what the user's mask takes away
    return audience == FileAudience::userOnly ? userReadsAndWrites : allReadAndWrite;
}

/// A file that is locked from its first moment that anybody can notice.
FileDescriptor createFile(const std::filesystem::path& path, FileAudience audience) {
    constexpr int mostAttempts = 100;
    // Readable too, for the content to be copied from when the path is lost.
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        FileDescriptor file =
            openFile(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, "create", modeFor(audience));
        if (tryLock(file, F_WRLCK, path)) {
            return file;
        }
        // Somebody who looks for files that were left behind was quicker; let them have this one.
        if (::unlink(path.c_str()) != 0) {
            throwFailure("create", path, errno);
        }
    }
    throwFailure("create", path, EBUSY);
}

} // namespace

PosixOutputFile::PosixOutputFile(const std::filesystem::path& path, FileAudience audience)
    : path_(std::filesystem::absolute(path)),
      audience_(audience),
      folder_(openFile(path_.parent_path(), O_RDONLY | O_DIRECTORY, "open")),
      file_(createFile(path_, audience)),
      lock_(duplicate(file_, path_)) {}

PosixOutputFile::PosixOutputFile(std::filesystem::path path, FileAudience audience,
                                 FileDescriptor folder, FileDescriptor file)
    : path_(std::move(path)),
      audience_(audience),
      folder_(std::move(folder)),
      file_(std::move(file)),
      lock_(duplicate(file_, path_)) {}

std::unique_ptr<PosixOutputFile> PosixOutputFile::createUnnamed(const std::filesystem::path& folder,
                                                                FileAudience audience) {
    FileDescriptor file;
    try {
        file = openFile(folder, O_RDWR | O_TMPFILE, "create a file in", modeFor(audience));
    } catch (const std::system_error& error) {
        // The last two are the words of kernels and file systems that do not know them.
        const int reason = error.code().value();
        if (reason == EOPNOTSUPP || reason == EISDIR || reason == EINVAL) {
            return nullptr;
        }
        throw;
    }
    tryLock(file, F_WRLCK, folder); // nobody else can have it open
    return std::unique_ptr<PosixOutputFile>(
        new PosixOutputFile(folder, audience, FileDescriptor(), std::move(file)));
}

void PosixOutputFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    writeFully(file_, offset, bytes, path_);
}

void PosixOutputFile::truncate(std::uint64_t size) {
    if (uninterrupted([&] { return ::ftruncate(file_.get(), static_cast<off_t>(size)); }) != 0) {
        throwFailure("write", path_, errno);
    }
}

void PosixOutputFile::sync() {
    syncContent(file_, path_);
    if (folder_.isOpen()) {
        syncNames(folder_, path_.parent_path());
        folder_ = FileDescriptor();
    }
}

void PosixOutputFile::ensureReachable() {
    if (isReachable()) {
        return;
    }
    PosixFileSystem().createFolders(path_.parent_path());
    PosixOutputFile replacement(path_, audience_);
    try {
        copyContentTo(replacement);
        replacement.sync();
    } catch (...) {
        // Half a copy is of no use to anybody; the whole is still open here.
        ::unlink(path_.c_str());
        throw;
    }
    *this = std::move(replacement);
}

void PosixOutputFile::takeName(const std::filesystem::path& path) {
    const auto open = "/proc/self/fd/" + std::to_string(file_.get());
    if (::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0) {
        throwFailure("create", path, errno);
    }
    path_ = std::filesystem::absolute(path);
    folder_ = openFile(path_.parent_path(), O_RDONLY | O_DIRECTORY, "open");
}

bool PosixOutputFile::isReachable() const {
    struct stat named{};

    if (::lstat(path_.c_str(), &named) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) {
            return false;
        }
        throwFailure("find", path_, errno);
    }
    const auto ours = statusOf(file_, path_);
    return named.st_dev == ours.st_dev && named.st_ino == ours.st_ino;
}

void PosixOutputFile::copyContentTo(PosixOutputFile& target) const {
    std::vector<std::byte> block(std::size_t{1} << 20U);
    for (std::uint64_t offset = 0;;) {
        const std::size_t count = readFully(file_, offset, block, path_);
        target.writeAt(offset, std::span(block).first(count));
        offset += count;
        if (count < block.size()) {
            return;
        }
    }
}

void PosixOutputFile::close() {
    closeChecked(std::move(file_), path_);
}

} // namespace vantoro::posix
