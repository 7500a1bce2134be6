// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

#include "engine/ports/capture_stream.h"

namespace vantoro::pipewire {

/// Captures sound through PipeWire: what every application plays, whichever output it plays on, and
/// one microphone. Errors are `CaptureError`s. A microphone's identifier is its node's name.
class CaptureService final : public vantoro::CaptureService {
public:
    std::shared_ptr<CaptureStream> makeStream(const ContentFilter& filter,
                                              const StreamConfiguration& configuration,
                                              CaptureStreamReceiver& receiver) override;
};

} // namespace vantoro::pipewire
