// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <memory>

#include "capture/samples/capture_feed.h"
#include "engine/ports/capture_stream.h"

namespace vantoro::pipewire {

/// Captures sound through PipeWire: what every application plays, whichever output it plays on, and
/// one microphone. Errors are `CaptureError`s. A microphone's identifier is its node's name.
class CaptureService final : public vantoro::CaptureService {
public:
    /// What a level meter needs to be told something new twelve times a second. Waking the capture
    /// queue costs more than the copying does.
    static constexpr std::chrono::milliseconds metersInterval{80};

    /// Sound is delivered once so much of it is there, and twice a second at least. It is lost
    /// where the delivery queue stands still for longer than `longestStandstill`.
    explicit CaptureService(
        std::chrono::milliseconds deliveryInterval = metersInterval,
        std::chrono::seconds longestStandstill = capture::CaptureFeed::usualLength)
        : deliveryInterval_(deliveryInterval), longestStandstill_(longestStandstill) {}

    std::shared_ptr<CaptureStream> makeStream(const ContentFilter& filter,
                                              const StreamConfiguration& configuration,
                                              CaptureStreamReceiver& receiver) override;

private:
    std::chrono::milliseconds deliveryInterval_;
    std::chrono::seconds longestStandstill_;
};

} // namespace vantoro::pipewire
