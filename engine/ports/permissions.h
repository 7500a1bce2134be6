// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro {

/// Permission to capture sound at all, whichever its source. Nobody can be asked for it.
/// Task threads, several at a time; bounded in time.
class CaptureAccess {
public:
    virtual ~CaptureAccess() = default;
    /// Whether capture is allowed now.
    virtual bool isGranted() = 0;
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

} // namespace vantoro
