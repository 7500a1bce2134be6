// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <memory>

#include "capture/samples/capture_feed.h"
#include "engine/ports/capture_stream.h"

namespace vantoro::pipewire {

/// Settings that apply to every capture.
struct CaptureSettings {
    /// How much sound wakes the queue: enough for a level meter to update twelve times per second.
    /// A wake-up costs more than the copying.
    std::chrono::milliseconds deliveryInterval{80};
    /// How long the queue may stall before sound is lost.
    std::chrono::seconds longestStall = capture::CaptureFeed::defaultLength;
    bool excludesOwnSound = true;
};

/// Captures sound through PipeWire: all applications on all outputs, and one microphone. Errors are
/// `Failure`s. A microphone's identifier is its node's name.
class PipeWireCapture final : public CaptureService {
public:
    explicit PipeWireCapture(CaptureSettings settings = {}) : settings_(settings) {}

    std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& request, SerialQueue& queue,
                                              CaptureStreamReceiver& receiver) override;

private:
    CaptureSettings settings_;
};

} // namespace vantoro::pipewire
