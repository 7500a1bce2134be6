// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "tests/support/fake_capture_service.h"

namespace vantoro::testing {

/// Delivers a tone per source that changes every second, as fast as the recorder takes it.
class HeardTones {
public:
    explicit HeardTones(FakeCaptureService& capture) : capture_(capture) {}

    /// Delivers up to this many frames in total; returns when they are processed.
    void until(std::int64_t frames);

    /// The tone in a given second, in Hz.
    static double systemTone(std::int64_t second);
    static double microphoneTone(std::int64_t second);
    static constexpr float amplitude = 0.2F;

private:
    void hear(AudioLevelSource source, std::uint32_t channels, std::int64_t frames,
              double (*toneOf)(std::int64_t));

    FakeCaptureService& capture_;
    std::int64_t heard_ = 0;
};

} // namespace vantoro::testing
