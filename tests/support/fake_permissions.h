// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <utility>

#include "engine/ports/permissions.h"
#include "tests/support/call_log.h"

namespace vantoro::testing {

class FakeCaptureAccess final : public CaptureAccess {
public:
    explicit FakeCaptureAccess(CallLog& log) : log_(log) {}

    bool isAllowed = true;
    bool isAllowedNextTime = false; ///< of two questions the second one's answer

    bool isGranted() override {
        log_.add("capture access");
        return std::exchange(isAllowed, isAllowed || isAllowedNextTime);
    }

private:
    CallLog& log_;
};

class FakeMicrophoneAccess final : public MicrophoneAccess {
public:
    explicit FakeMicrophoneAccess(CallLog& log) : log_(log) {}

    AuthorizationStatus current = AuthorizationStatus::authorized;
    bool grantedOnRequest = false;

    AuthorizationStatus status() override {
        log_.add("microphone status");
        return current;
    }

    bool request() override {
        log_.add("microphone request");
        return grantedOnRequest;
    }

private:
    CallLog& log_;
};

} // namespace vantoro::testing
