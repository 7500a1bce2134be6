// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/capture_timeline.h"

#include <algorithm>

namespace vantoro::capture {

namespace {

bool isSilent(Planes planes) {
    return std::ranges::all_of(planes, [](std::span<const float> samples) {
        return std::ranges::all_of(samples, [](float sample) { return sample == 0.0F; });
    });
}

} // namespace

void CaptureTimeline::begin(std::int64_t position) {
    begin_ = position;
    emitted_ = position;
    for (MixLine& line : lines_) {
        line.moveFront(position);
    }
}

void CaptureTimeline::addFeed(FeedId feed, AudioLevelSource source, std::int64_t position) {
    feeds_.insert_or_assign(feed, Feed{.source = source, .next = position});
}

void CaptureTimeline::removeFeed(FeedId feed) {
    feeds_.erase(feed);
}

std::int64_t CaptureTimeline::place(FeedId id, const Stamp& stamp, Planes planes) {
    Feed& feed = feeds_.at(id);
    const std::int64_t stamped = gridPosition(stamp.nanoseconds);
    const bool silent = isSilent(planes);
    const bool inSilence = silent || feed.soundEnd < feed.next;
    const std::int64_t tolerated = inSilence ? toleranceInSilence : tolerance;
    feed.silentFrames = silent ? stamp.frames : 0;
    if (feed.started && silent && feed.next - stamped > tolerated) {
        feed.next = std::max(feed.next, stamped + stamp.frames);
        return stamped + stamp.frames - feed.next;
    }
    // A driver's first cycles may hold too many frames: until they are heard, stamps apply.
    const bool unheard = stamped + stamp.frames <= begin_;
    if (!feed.started || unheard || stamped - feed.next > tolerated) {
        // A feed's first piece may be a cycle older than what was emitted: it then follows that.
        // Not so before the start, nor after a stall, when everything would be late.
        const bool late = !feed.started && emitted_ > begin_ && emitted_ - stamped <= tolerance;
        feed.next = late ? std::max(stamped, emitted_) : stamped;
        feed.started = true;
    } else if (inSilence && feed.next - stamped > tolerated) {
        feed.next = std::clamp(std::max(feed.soundEnd, emitted_), stamped, feed.next);
    }
    const std::int64_t error = stamped - feed.next;
    if (!silent) { // the line is silent by default
        lineOf(feed.source).add(feed.next, planes);
        feed.soundEnd = feed.next + stamp.frames;
    }
    feed.next += stamp.frames;
    return error;
}

std::int64_t CaptureTimeline::lose(FeedId id, std::int64_t frames) {
    Feed& feed = feeds_.at(id);
    std::int64_t& reported = reportedLoss_[static_cast<std::size_t>(feed.source)];
    const std::int64_t first = std::max({feed.next, reported, begin_});
    feed.next += frames;
    feed.soundEnd = feed.next; // what was lost may have been sound
    reported = std::max(reported, feed.next);
    return std::max<std::int64_t>(0, feed.next - first);
}

std::int64_t CaptureTimeline::horizon(std::int64_t now) const {
    const std::int64_t limit = now - patience;
    std::int64_t slowest = limit;
    bool waiting = false;
    for (const auto& [id, feed] : feeds_) {
        const std::int64_t complete = feed.next - feed.silentFrames;
        if (complete > limit) {
            slowest = waiting ? std::min(slowest, complete) : complete;
            waiting = true;
        }
    }
    return slowest;
}

std::int64_t CaptureTimeline::end(std::int64_t now) const {
    std::int64_t furthest = emitted_;
    for (const auto& [id, feed] : feeds_) {
        furthest = std::max(furthest, feed.next);
    }
    constexpr std::int64_t farBehind = framesInMilliseconds(100); // several graph cycles
    return now - furthest > farBehind ? now : furthest;
}

void CaptureTimeline::emitBlocks(std::int64_t upTo, const Emit& emit) {
    while (upTo - emitted_ >= static_cast<std::int64_t>(blockFrames)) {
        emitBlock(blockFrames, emit);
    }
}

void CaptureTimeline::emitAll(std::int64_t upTo, const Emit& emit) {
    emitBlocks(upTo, emit);
    if (upTo > emitted_) {
        emitBlock(static_cast<std::size_t>(upTo - emitted_), emit);
    }
}

void CaptureTimeline::emitBlock(std::size_t frames, const Emit& emit) {
    for (const AudioLevelSource source :
         {AudioLevelSource::systemAudio, AudioLevelSource::microphone}) {
        emit(source, emitted_, lineOf(source).take(frames), frames);
    }
    emitted_ += static_cast<std::int64_t>(frames);
}

} // namespace vantoro::capture
