// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro {

/// Permission to capture any sound. There is no prompt for it. Task threads, several at a time;
/// bounded in time.
class CaptureAccess {
public:
    virtual ~CaptureAccess() = default;
    virtual bool isGranted() = 0;
};

enum class AuthorizationStatus : std::uint8_t { notDetermined, restricted, denied, authorized };

/// Permission to record a microphone. Task threads, several at a time; `status` is bounded in time.
class MicrophoneAccess {
public:
    virtual ~MicrophoneAccess() = default;
    /// Never prompts.
    virtual AuthorizationStatus status() = 0;
    /// Prompts the user; true if granted. Call only while `notDetermined`.
    virtual bool request() = 0;
};

} // namespace vantoro
