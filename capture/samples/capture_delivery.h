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

/// Which sources a stream delivers.
struct DeliveredSources {
    bool systemAudio = false;
    bool microphone = false;
};

/// Turns what the feeds hold into timed sample buffers, on the delivery queue.
///
/// The calls only put work on the queue; they may come on any thread but the real-time one, whose
/// call is `wake`. `close` must have been called before the queue or the receiver goes.
class CaptureDelivery : public std::enable_shared_from_this<CaptureDelivery> {
public:
    CaptureDelivery(SerialQueue& queue, CaptureStreamReceiver& receiver, DeliveredSources sources);

    void addFeed(std::shared_ptr<CaptureFeed> feed);
    /// After its stream is gone. What it still holds is delivered.
    void removeFeed(std::shared_ptr<CaptureFeed> feed);
    /// Delivery begins, with what was captured from a position of the grid on, be it past.
    void begin(std::int64_t position);
    /// After all streams are gone: delivers everything, and nothing after that.
    void finish();
    /// Returns when the queue has let go of the receiver.
    void close();

    /// Has the feeds emptied soon. Real-time safe. Not after `finish` or `close`.
    void wake() noexcept { source_.signal(); }

private:
    struct Inlet {
        std::shared_ptr<CaptureFeed> feed;
        ClockSteering steering;
    };

    // On the queue only, as all that follows is.
    void pump();
    void drain(Inlet& inlet);
    void takeIn(Inlet& inlet, const Stamp& stamp, Planes planes);
    void drainAll();
    void tellLoss();
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
    std::array<std::int64_t, 2> lost_{}; // frames by source, not told yet
    bool delivering_ = false;
    bool finished_ = false;
};

} // namespace vantoro::capture
