// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/following_mix.h"

#include <exception>
#include <stdexcept>
#include <utility>

#include <sys/resource.h>
#include <unistd.h>

namespace vantoro::media {

namespace {

void lowerPriority() {
    constexpr int lowestPriority = 19;
    // A failure is harmless.
    static_cast<void>(::setpriority(PRIO_PROCESS, static_cast<id_t>(::gettid()), lowestPriority));
}

/// A single track at volume 1 is copied at the end, which takes no time worth saving.
bool isMixed(const std::vector<float>& volumes) {
    return !volumes.empty() && volumes != std::vector<float>{1.0F};
}

} // namespace

FollowingMix::FollowingMix(const AacCodec& codec, FileSystem& fileSystem,
                           std::filesystem::path movie, IsPowerSaved isPowerSaved)
    : codec_(codec),
      fileSystem_(fileSystem),
      movie_(std::move(movie)),
      isPowerSaved_(std::move(isPowerSaved)),
      thread_([this](const std::stop_token& stop) { follow(stop); }) {}

FollowingMix::~FollowingMix() {
    stopFollowing();
}

void FollowingMix::expect(std::vector<float> volumes) {
    const std::scoped_lock lock(mutex_);
    if (volumes == volumes_) {
        return;
    }
    volumes_ = std::move(volumes);
    changedAt_ = std::chrono::steady_clock::now();
    isOutdated_ = true;
    attempt_.request_stop();
    changed_.notify_one();
}

void FollowingMix::fragmentWritten() {
    const std::scoped_lock lock(mutex_);
    hasNewFragment_ = true;
    hasFragments_ = true;
    changed_.notify_one();
}

std::shared_ptr<const Movie> FollowingMix::finishedMovie() {
    stopFollowing();
    if (!mix_) {
        return nullptr;
    }
    try {
        return mix_->finishedMovie();
    } catch (const std::exception&) {
        mix_.reset();
        return nullptr;
    }
}

std::unique_ptr<OutputFile> FollowingMix::complete(const Mix& mix, const RecordingTags& tags,
                                                   unsigned threads, const ExportProgress& progress,
                                                   const std::stop_token& stop) {
    stopFollowing();
    if (!mix_) {
        return nullptr;
    }
    try {
        return std::exchange(mix_, nullptr)->complete(mix, tags, threads, progress, stop);
    } catch (const std::exception&) {
        return nullptr;
    }
}

void FollowingMix::follow(const std::stop_token& stop) {
    lowerPriority();
    try {
        while (waitForWork(stop)) {
            advance();
        }
    } catch (const std::exception&) {
        mix_.reset();
    }
}

/// Waits for new fragments and settled volumes. False on a stop request.
bool FollowingMix::waitForWork(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    const auto hasWork = [this] {
        return hasFragments_ && isMixed(volumes_) && (hasNewFragment_ || isOutdated_);
    };
    while (changed_.wait(lock, stop, hasWork) && !stop.stop_requested()) {
        const auto change = changedAt_;
        const bool changedAgain = changed_.wait_until(lock, stop, change + settleTime,
                                                      [&] { return changedAt_ != change; });
        if (!changedAgain && !stop.stop_requested()) {
            return true;
        }
    }
    return false;
}

void FollowingMix::advance() {
    std::unique_lock lock(mutex_);
    const auto volumes = volumes_;
    const bool isOutdated = std::exchange(isOutdated_, false);
    hasNewFragment_ = false;
    attempt_ = std::stop_source();
    const auto stop = attempt_.get_token();
    lock.unlock();
    if (!isAffordable()) {
        throw std::runtime_error("The disk is nearly full, or power is to be saved.");
    }
    if (isOutdated) {
        mix_.reset(); // and free its disk space
    }
    if (!mix_) {
        mix_ = std::make_unique<GrowingMix>(codec_, fileSystem_, movie_, volumes);
    }
    mix_->advance(stop);
}

bool FollowingMix::isAffordable() const {
    return fileSystem_.availableSpace(movie_.parent_path()) >= minFreeSpace &&
           !(isPowerSaved_ && isPowerSaved_());
}

void FollowingMix::stopFollowing() {
    thread_.request_stop();
    {
        const std::scoped_lock lock(mutex_);
        attempt_.request_stop();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

} // namespace vantoro::media
