// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <memory>

#include "capture/samples/capture_feed.h"
#include "engine/ports/capture_stream.h"

namespace vantoro::pipewire {

/// How sound is captured, whatever is asked for.
struct CaptureSettings {
    /// For how much sound the queue is woken: what a level meter needs to be told something new
    /// twelve times a second. Waking the queue costs more than the copying does.
    std::chrono::milliseconds deliveryInterval{80};
    /// Of the queue, before sound is lost.
    std::chrono::seconds longestStandstill = capture::CaptureFeed::usualLength;
    bool excludesOwnSound = true;
};

/// Captures sound through PipeWire: what every application plays, whichever output it plays on, and
/// one microphone. Its failures are `Failure`s. A microphone's identifier is its node's name.
class CaptureService final : public vantoro::CaptureService {
public:
    explicit CaptureService(CaptureSettings settings = {}) : settings_(settings) {}

    std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& request, SerialQueue& queue,
                                              CaptureStreamReceiver& receiver) override;

private:
    CaptureSettings settings_;
};

} // namespace vantoro::pipewire
