// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>

#include "capture/samples/capture_feed.h"
#include "capture/samples/capture_timeline.h"
#include "capture/samples/clock_steering.h"
#include "engine/ports/capture_stream.h"
#include "engine/serial_queue.h"

namespace vantoro::capture {

struct DeliveredSources {
    bool systemAudio = false;
    bool microphone = false;
};

/// Turns the sound in the feeds into timed sample buffers, on the delivery queue.
///
/// All calls only queue work; the real-time thread may only call `wake`. Call `close` before
/// destroying the queue or the receiver.
class CaptureDelivery : public std::enable_shared_from_this<CaptureDelivery> {
public:
    CaptureDelivery(SerialQueue& queue, CaptureStreamReceiver& receiver, DeliveredSources sources);

    void addFeed(std::shared_ptr<CaptureFeed> feed);
    /// Call after its stream is gone. Delivers what is left in the feed.
    void removeFeed(std::shared_ptr<CaptureFeed> feed);
    /// Starts delivery with sound from a grid position on, which may be past.
    void begin(std::int64_t position);
    /// Call after all streams are gone: delivers everything left, and nothing afterwards.
    void finish();
    /// Returns once the queue no longer uses the receiver.
    void close();

    /// Requests that the feeds be emptied soon. Real-time safe. Not after `finish` or `close`.
    void wake() noexcept { source_->signal(); }

private:
    struct Inlet {
        std::shared_ptr<CaptureFeed> feed;
        ClockSteering steering;
    };

    // Queue thread only, like everything below.
    void pump();
    void drain(Inlet& inlet);
    void takeIn(Inlet& inlet, const Stamp& stamp, Planes planes);
    void drainAll();
    void reportLoss();
    bool delivers(AudioLevelSource source) const;
    void deliver(AudioLevelSource source, std::int64_t position, std::span<const float> planes,
                 std::size_t frames);

    SerialQueue& queue_;
    CaptureStreamReceiver& receiver_;
    const DeliveredSources sources_;
    SerialQueue::SourceHandle source_;
    CaptureTimeline timeline_;
    CaptureTimeline::Emit emit_;
    std::map<const CaptureFeed*, Inlet> inlets_;
    std::array<std::int64_t, 2> lost_{}; // frames by source, not reported yet
    bool delivering_ = false;
    bool finished_ = false;
};

} // namespace vantoro::capture
