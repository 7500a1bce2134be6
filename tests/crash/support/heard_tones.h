// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include "tests/support/recorder_fakes.h"

namespace vantoro::testing {

/// What both sources deliver, as fast as it can be dealt with: a tone each that changes every
/// second.
class HeardTones {
public:
    explicit HeardTones(FakeCaptureService& capture) : capture_(capture) {}

    /// Delivers from where it was on until that many frames in all, and has seen them dealt with.
    void until(std::int64_t frames);

    /// The tone of a second, in Hz.
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
