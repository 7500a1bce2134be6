// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/posix_output_file.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/posix/posix_file_system.h"
#include "platform/posix/renaming.h"
#include "platform/posix/system_calls.h"

namespace vantoro::posix {

namespace {

mode_t modeFor(FileAudience audience) {
    constexpr mode_t userReadsAndWrites = 0600;
    constexpr mode_t allReadAndWrite = 0666; // minus the umask
    return audience == FileAudience::userOnly ? userReadsAndWrites : allReadAndWrite;
}

FileDescriptor duplicate(const FileDescriptor& file, const std::filesystem::path& path) {
    const int number = ::fcntl(file.get(), F_DUPFD_CLOEXEC, 0);
    if (number == -1) {
        throw FileFailure(FileAction::open, path, errno);
    }
    return FileDescriptor(number);
}

/// Creates a file and locks it before any other process does.
FileDescriptor createFile(const std::filesystem::path& path, FileAudience audience) {
    constexpr int maximumAttempts = 100;
    // Readable too, so that `ensureReachable` can copy the content.
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        FileDescriptor file = openFile(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW,
                                       FileAction::create, modeFor(audience));
        if (tryLock(file, F_WRLCK, path) != LockAttempt::heldByOthers) {
            return file;
        }
        // A process looking for abandoned files locked it first; leave it this one.
        if (::unlink(path.c_str()) != 0) {
            throw FileFailure(FileAction::create, path, errno);
        }
    }
    throw FileFailure(FileAction::create, path, EBUSY);
}

/// Whether an export can have left the file behind: not a pipe, and without a second name that may
/// still be wanted.
bool mayBeTakenOver(const FileDescriptor& file, const std::filesystem::path& path) {
    const auto status = statusOf(file, path);
    return S_ISREG(status.st_mode) && status.st_nlink == 1;
}

/// An abandoned file, emptied; not open if the file must be left alone.
FileDescriptor takeOver(const std::filesystem::path& path) {
    FileDescriptor file(uninterrupted(
        [&] { return ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); }));
    // Check again under the lock: the file may have been finished or removed meanwhile.
    if (!file.isOpen() || !mayBeTakenOver(file, path) ||
        tryLock(file, F_WRLCK, path) != LockAttempt::locked || !isAt(path, file)) {
        return {};
    }
    if (uninterrupted([&] { return ::ftruncate(file.get(), 0); }) != 0) {
        throw FileFailure(FileAction::write, path, errno);
    }
    return file;
}

/// Not open if something exists there.
FileDescriptor createIfAbsent(const std::filesystem::path& path, FileAudience audience) {
    FileDescriptor file;
    try {
        file = openFile(path, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, FileAction::create,
                        modeFor(audience));
    } catch (const std::system_error& error) {
        if (error.code() != std::errc::file_exists) {
            throw;
        }
        return {};
    }
    try {
        // Another process may have taken it over before it was locked.
        if (tryLock(file, F_WRLCK, path) == LockAttempt::heldByOthers || !isAt(path, file)) {
            return {};
        }
    } catch (...) {
        ::unlink(path.c_str()); // a file taken over and renamed is unaffected
        throw;
    }
    return file;
}

} // namespace

PosixOutputFile::PosixOutputFile(const std::filesystem::path& path, FileAudience audience)
    : path_(std::filesystem::absolute(path)),
      audience_(audience),
      folder_(openFile(path_.parent_path(), O_RDONLY | O_DIRECTORY, FileAction::open)),
      file_(createFile(path_, audience)),
      lock_(duplicate(file_, path_)) {}

PosixOutputFile::PosixOutputFile(std::filesystem::path path, FileAudience audience,
                                 FileDescriptor folder, FileDescriptor file)
    : path_(std::move(path)),
      audience_(audience),
      folder_(std::move(folder)),
      file_(std::move(file)),
      lock_(duplicate(file_, path_)) {}

std::unique_ptr<PosixOutputFile> PosixOutputFile::claim(const std::filesystem::path& path,
                                                        FileAudience audience) {
    auto absolute = std::filesystem::absolute(path);
    auto folder = openFile(absolute.parent_path(), O_RDONLY | O_DIRECTORY, FileAction::open);
    FileDescriptor file = createIfAbsent(path, audience);
    if (!file.isOpen()) {
        file = takeOver(path);
    }
    if (!file.isOpen()) {
        return nullptr;
    }
    return std::unique_ptr<PosixOutputFile>(
        new PosixOutputFile(std::move(absolute), audience, std::move(folder), std::move(file)));
}

std::unique_ptr<PosixOutputFile> PosixOutputFile::createUnnamed(const std::filesystem::path& folder,
                                                                FileAudience audience) {
    FileDescriptor file;
    try {
        file = openFile(folder, O_RDWR | O_TMPFILE, FileAction::createIn, modeFor(audience));
    } catch (const std::system_error& error) {
        // The last two come from kernels and file systems without support.
        const int reason = error.code().value();
        if (reason == EOPNOTSUPP || reason == EISDIR || reason == EINVAL) {
            return nullptr;
        }
        throw;
    }
    tryLock(file, F_WRLCK, folder); // no other process can have it open
    auto unnamed = std::unique_ptr<PosixOutputFile>(
        new PosixOutputFile(folder, audience, FileDescriptor(), std::move(file)));
    unnamed->hasName_ = false;
    return unnamed;
}

void PosixOutputFile::writeAt(std::uint64_t offset, std::span<const std::byte> bytes) {
    writeFully(file_, offset, bytes, path_);
}

void PosixOutputFile::truncate(std::uint64_t size) {
    if (uninterrupted([&] { return ::ftruncate(file_.get(), static_cast<off_t>(size)); }) != 0) {
        throw FileFailure(FileAction::write, path_, errno);
    }
}

void PosixOutputFile::sync() {
    if (uninterrupted([&] { return ::fdatasync(file_.get()); }) != 0) {
        throw FileFailure(FileAction::write, path_, errno);
    }
    if (folder_.isOpen()) {
        syncNames(folder_, path_.parent_path());
        folder_ = FileDescriptor();
    }
}

void PosixOutputFile::ensureReachable() {
    if (isAt(path_, file_)) {
        return;
    }
    PosixFileSystem().createFolders(path_.parent_path());
    PosixOutputFile replacement(path_, audience_);
    try {
        copyContentTo(replacement);
        replacement.sync();
    } catch (...) {
        // A partial copy is useless; the original is still open here.
        ::unlink(path_.c_str());
        throw;
    }
    *this = std::move(replacement);
}

void PosixOutputFile::takeName(const std::filesystem::path& path) {
    if (!hasName_) {
        const auto open = "/proc/self/fd/" + std::to_string(lock_.get());
        if (::linkat(AT_FDCWD, open.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            throw FileFailure(FileAction::create, path, errno);
        }
    } else if (isAt(path_, lock_)) {
        renameWithoutReplacing(path_, path);
    } else {
        throw FileFailure(FileAction::find, path_, ENOENT);
    }
    hasName_ = true;
    path_ = std::filesystem::absolute(path);
    folder_ = openFile(path_.parent_path(), O_RDONLY | O_DIRECTORY, FileAction::open);
}

void PosixOutputFile::discard() noexcept {
    try {
        if (hasName_ && isAt(path_, lock_)) {
            ::unlink(path_.c_str());
        }
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): it stays, as after a crash
    }
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
    // Some systems report a failed write only now. An interrupted close has still closed the file;
    // a retry might close another one.
    if (::close(file_.release()) != 0 && errno != EINTR) {
        throw FileFailure(FileAction::write, path_, errno);
    }
}

} // namespace vantoro::posix
