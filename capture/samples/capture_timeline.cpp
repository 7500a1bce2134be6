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

void CaptureTimeline::addTap(TapId tap, CaptureSource source, std::int64_t position) {
    taps_.insert_or_assign(tap, Tap{.source = source, .next = position});
}

void CaptureTimeline::removeTap(TapId tap) {
    taps_.erase(tap);
}

std::int64_t CaptureTimeline::place(TapId id, const Stamp& stamp, Planes planes) {
    Tap& tap = taps_.at(id);
    const std::int64_t stamped = gridPosition(stamp.nanoseconds);
    const bool silent = isSilent(planes);
    const std::int64_t tolerated = silent ? toleranceInSilence : tolerance;
    if (tap.started && silent && tap.next - stamped > tolerated) {
        tap.next = std::max(tap.next, stamped + stamp.frames);
        return stamped + stamp.frames - tap.next;
    }
    // A driver's first cycles may have more frames than time: while none is heard, stamps hold.
    const bool unheard = stamped + stamp.frames <= begin_;
    if (!tap.started || unheard || stamped - tap.next > tolerated) {
        // What a tap hears first may find the grid emitted a cycle further than its stamp: it is
        // put behind rather than lost. What was captured before the beginning is not late. Behind
        // a standstill all that follows would be late.
        const bool late = !tap.started && emitted_ > begin_ && emitted_ - stamped <= tolerance;
        tap.next = late ? std::max(stamped, emitted_) : stamped;
        tap.started = true;
    }
    if (!silent) { // what nothing is added to is silent already
        lineOf(tap.source).add(tap.next, planes);
    }
    const std::int64_t error = stamped - tap.next;
    tap.next += stamp.frames;
    return error;
}

std::int64_t CaptureTimeline::lose(TapId id, std::int64_t frames) {
    Tap& tap = taps_.at(id);
    std::int64_t& told = lossTold_[static_cast<std::size_t>(tap.source)];
    const std::int64_t first = std::max({tap.next, told, begin_});
    tap.next += frames;
    told = std::max(told, tap.next);
    return std::max<std::int64_t>(0, tap.next - first);
}

std::int64_t CaptureTimeline::horizon(std::int64_t now) const {
    const std::int64_t limit = now - patience;
    std::int64_t slowest = limit;
    bool waiting = false;
    for (const auto& [id, tap] : taps_) {
        if (tap.next > limit) {
            slowest = waiting ? std::min(slowest, tap.next) : tap.next;
            waiting = true;
        }
    }
    return slowest;
}

std::int64_t CaptureTimeline::end(std::int64_t now) const {
    std::int64_t furthest = emitted_;
    for (const auto& [id, tap] : taps_) {
        furthest = std::max(furthest, tap.next);
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
    for (const CaptureSource source : {CaptureSource::systemAudio, CaptureSource::microphone}) {
        emit(source, emitted_, lineOf(source).take(frames), frames);
    }
    emitted_ += static_cast<std::int64_t>(frames);
}

} // namespace vantoro::capture
