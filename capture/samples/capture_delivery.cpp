// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/samples/capture_delivery.h"

#include <utility>

namespace vantoro::capture {

namespace {

CaptureTimeline::FeedId feedId(const CaptureFeed* feed) {
    return reinterpret_cast<std::uintptr_t>(feed);
}

std::int64_t gridNow() {
    return gridPosition(nanosecondsOn(CLOCK_MONOTONIC));
}

} // namespace

CaptureDelivery::CaptureDelivery(SerialQueue& queue, CaptureStreamReceiver& receiver,
                                 DeliveredSources sources)
    : queue_(queue),
      receiver_(receiver),
      sources_(sources),
      emit_([this](AudioLevelSource source, std::int64_t position, std::span<const float> planes,
                   std::size_t frames) { deliver(source, position, planes, frames); }) {
    source_ = queue.addSource([this] { pump(); });
}

void CaptureDelivery::addFeed(std::shared_ptr<CaptureFeed> feed) {
    queue_.async([self = shared_from_this(), feed = std::move(feed), now = gridNow()] {
        self->timeline_.addFeed(feedId(feed.get()), feed->source, now);
        self->inlets_.emplace(feed.get(), Inlet{.feed = feed, .steering = {}});
    });
}

void CaptureDelivery::removeFeed(std::shared_ptr<CaptureFeed> feed) {
    queue_.async([self = shared_from_this(), feed = std::move(feed)] {
        if (self->delivering_) {
            self->drain(self->inlets_.at(feed.get()));
            self->reportLoss();
        }
        self->timeline_.removeFeed(feedId(feed.get()));
        self->inlets_.erase(feed.get());
    });
}

void CaptureDelivery::begin(std::int64_t position) {
    queue_.async([self = shared_from_this(), position] {
        self->timeline_.begin(position);
        self->delivering_ = true;
    });
}

void CaptureDelivery::finish() {
    queue_.async([self = shared_from_this(), now = gridNow()] {
        if (self->delivering_ && !self->finished_) {
            self->drainAll();
            self->timeline_.emitAll(self->timeline_.end(now), self->emit_);
        }
        self->finished_ = true;
        self->source_ = {};
    });
}

void CaptureDelivery::close() {
    queue_.sync([this] {
        finished_ = true;
        source_ = {};
    });
}

void CaptureDelivery::pump() {
    if (!delivering_ || finished_) {
        return;
    }
    // Taken before the feeds are read, so that sound arriving meanwhile does not count as missing.
    const std::int64_t now = gridNow();
    drainAll();
    timeline_.emitBlocks(timeline_.horizon(now), emit_);
}

void CaptureDelivery::drainAll() {
    for (auto& [key, inlet] : inlets_) {
        drain(inlet);
    }
    reportLoss();
}

void CaptureDelivery::drain(Inlet& inlet) {
    const auto take = [&](const Stamp& stamp, Planes planes) { takeIn(inlet, stamp, planes); };
    while (inlet.feed->ring.read(take)) {
    }
    inlet.feed->speed.store(inlet.steering.speed(), std::memory_order_relaxed);
}

void CaptureDelivery::takeIn(Inlet& inlet, const Stamp& stamp, Planes planes) {
    const auto feed = feedId(inlet.feed.get());
    if (stamp.lostFrames > 0) {
        lost_[static_cast<std::size_t>(inlet.feed->source)] +=
            timeline_.lose(feed, static_cast<std::int64_t>(stamp.lostFrames));
    }
    if (stamp.frames > 0) {
        const auto behind = timeline_.place(feed, stamp, planes);
        inlet.steering.observe(stamp, behind);
    }
}

/// One report per source, however many pieces were lost.
void CaptureDelivery::reportLoss() {
    for (const AudioLevelSource source :
         {AudioLevelSource::systemAudio, AudioLevelSource::microphone}) {
        const auto frames = std::exchange(lost_[static_cast<std::size_t>(source)], 0);
        if (frames > 0 && delivers(source)) {
            receiver_.didLoseSound(source, static_cast<double>(frames) / framesPerSecond);
        }
    }
}

bool CaptureDelivery::delivers(AudioLevelSource source) const {
    return source == AudioLevelSource::systemAudio ? sources_.systemAudio : sources_.microphone;
}

void CaptureDelivery::deliver(AudioLevelSource source, std::int64_t position,
                              std::span<const float> planes, std::size_t frames) {
    const bool isAudio = source == AudioLevelSource::systemAudio;
    if (!delivers(source)) {
        return;
    }
    SampleBuffer buffer;
    buffer.frameCount = static_cast<std::int64_t>(frames);
    buffer.presentationTime = {.value = position, .timescale = framesPerSecond};
    buffer.format = AudioStreamDescription{.sampleRate = framesPerSecond,
                                           .channelsPerFrame = isAudio ? 2U : 1U};
    buffer.samples = planes;
    receiver_.didOutputSampleBuffer(buffer, source);
}

} // namespace vantoro::capture
