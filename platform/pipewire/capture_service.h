// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <memory>

#include "engine/ports/capture_stream.h"

namespace vantoro::pipewire {

/// Captures sound through PipeWire: what every application plays, whichever output it plays on, and
/// one microphone. Errors are `CaptureError`s. A microphone's identifier is its node's name.
class CaptureService final : public vantoro::CaptureService {
public:
    /// What a level meter needs to be told something new twelve times a second. Waking the capture
    /// queue costs more than the copying does.
    static constexpr std::chrono::milliseconds metersInterval{80};

    /// Sound is delivered once so much of it is there, and twice a second at least.
    explicit CaptureService(std::chrono::milliseconds deliveryInterval = metersInterval)
        : deliveryInterval_(deliveryInterval) {}

    std::shared_ptr<CaptureStream> makeStream(const ContentFilter& filter,
                                              const StreamConfiguration& configuration,
                                              CaptureStreamReceiver& receiver) override;

private:
    std::chrono::milliseconds deliveryInterval_;
};

} // namespace vantoro::pipewire
