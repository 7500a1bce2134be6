// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <cstdint>

namespace vantoro {

/// A point in time or a duration as a rational number of seconds: value / timescale.
/// Default-constructed, it is the invalid time, which is unordered.
struct MediaTime {
    std::int64_t value = 0;
    std::int32_t timescale = 0; ///< units per second; positive if valid

    constexpr bool isValid() const noexcept { return timescale > 0; }

    constexpr double seconds() const noexcept {
        return isValid() ? static_cast<double>(value) / timescale : 0.0;
    }

    /// Exact for all timescales; unordered if either time is invalid.
    friend constexpr std::partial_ordering operator<=>(MediaTime a, MediaTime b) noexcept {
        if (!a.isValid() || !b.isValid()) {
            return std::partial_ordering::unordered;
        }
        return widened(a.value) * b.timescale <=> widened(b.value) * a.timescale;
    }

    friend constexpr bool operator==(MediaTime a, MediaTime b) noexcept {
        return (a <=> b) == std::partial_ordering::equivalent;
    }

    /// Converts to units of 1/`rate` second, rounded to nearest. Valid times only.
    constexpr std::int64_t inUnitsOf(std::int32_t rate) const noexcept {
        const Wide numerator = widened(value) * rate;
        const Wide half = timescale / 2;
        return static_cast<std::int64_t>((numerator + (numerator < 0 ? -half : half)) / timescale);
    }

private:
    __extension__ using Wide = __int128;

    static constexpr Wide widened(std::int64_t v) noexcept { return v; }
};

inline constexpr MediaTime zeroTime{0, 1};

struct TimeRange {
    MediaTime start;
    MediaTime duration;

    friend bool operator==(const TimeRange&, const TimeRange&) = default;
};

} // namespace vantoro
