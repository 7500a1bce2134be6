// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <vector>

#include "engine/ports/capture_stream.h"

namespace vantoro {

/// Permission to record the screen's sound: all that the computer plays.
/// Task threads, several at a time; bounded in time.
class ScreenCaptureAccess {
public:
    virtual ~ScreenCaptureAccess() = default;
    /// Whether capture is allowed now. Never asks anybody.
    virtual bool preflight() = 0;
    /// Asks where the platform has a way to ask; whether capture is allowed afterwards.
    virtual bool request() = 0;
};

enum class AuthorizationStatus : std::uint8_t { notDetermined, restricted, denied, authorized };

/// Permission to record a microphone. Task threads, several at a time; `status` is bounded in time.
class MicrophoneAccess {
public:
    virtual ~MicrophoneAccess() = default;
    /// Never asks anybody.
    virtual AuthorizationStatus status() = 0;
    /// Asks the user; true when access was granted. Only called while not determined.
    virtual bool request() = 0;
};

/// What could be captured. Called on task threads.
class ShareableContent {
public:
    virtual ~ShareableContent() = default;
    /// The displays, in the window system's order; throws when they cannot be learnt.
    virtual std::vector<Display> displays() = 0;
    virtual std::uint32_t mainDisplayID() = 0;
};

} // namespace vantoro
