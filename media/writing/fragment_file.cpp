// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/fragment_file.h"

#include <utility>

#include "engine/failure.h"

namespace vantoro::media {

FragmentFile::FragmentFile(std::unique_ptr<OutputFile> file, Failure onFailure, Growth onGrowth)
    : file_(std::move(file)),
      onFailure_(std::move(onFailure)),
      onGrowth_(std::move(onGrowth)),
      thread_([this] { run(); }) {}

FragmentFile::~FragmentFile() {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    changed_.notify_one();
}

void FragmentFile::append(std::vector<std::byte> fragment, std::int64_t end) {
    const std::lock_guard lock(mutex_);
    backlog_ += fragment.size();
    fragments_.push_back({std::move(fragment), end});
    changed_.notify_one();
}

std::size_t FragmentFile::backlog() const {
    const std::lock_guard lock(mutex_);
    return backlog_;
}

void FragmentFile::finish(Completion completion) {
    const std::lock_guard lock(mutex_);
    completion_ = std::move(completion);
    stopping_ = true;
    changed_.notify_one();
}

void FragmentFile::run() {
    std::unique_lock lock(mutex_);
    bool failed = false;
    const auto canWrite = [&] { return !failed && !fragments_.empty(); };
    for (;;) {
        changed_.wait(lock, [&] { return stopping_ || canWrite(); });
        if (!canWrite()) {
            break;
        }
        lock.unlock();
        failed = !writeNext();
        if (failed) {
            onFailure_(failure_);
        } else {
            onGrowth_(backlog());
        }
        lock.lock();
    }
    lock.unlock();
    if (completion_) {
        conclude();
    }
}

/// Writes the first waiting fragment and removes it from the queue once it is on disk.
bool FragmentFile::writeNext() {
    std::unique_lock lock(mutex_);
    const Fragment& fragment = fragments_.front(); // other threads only append
    lock.unlock();
    try {
        file_->writeAt(end_, fragment.bytes);
        file_->sync();
    } catch (const std::exception&) {
        failure_ = std::current_exception();
        cutBack();
        return false;
    }
    end_ += fragment.bytes.size();
    framesOnDisk_ = fragment.end;
    lock.lock();
    backlog_ -= fragment.bytes.size();
    fragments_.pop_front();
    return true;
}

/// Removes what a failed write left after the last whole fragment. Readers ignore it anyway, so
/// failure is harmless.
void FragmentFile::cutBack() noexcept {
    try {
        file_->truncate(end_);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): see above
    }
}

/// Tries once more to write the rest, and closes the file.
void FragmentFile::conclude() {
    while (!fragments_.empty() && writeNext()) {
    }
    std::exception_ptr failure;
    if (end_ == 0) {
        failure = fragments_.empty()
                      ? std::make_exception_ptr(vantoro::Failure(FailureCode::noSoundWritten))
                      : failure_;
    }
    try {
        file_->ensureReachable();
        file_->close();
    } catch (const std::exception&) {
        failure = failure ? failure : std::current_exception();
    }
    completion_(failure);
}

} // namespace vantoro::media
