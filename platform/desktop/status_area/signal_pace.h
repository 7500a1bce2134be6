// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <chrono>
#include <optional>

namespace vantoro::desktop {

/// Limits signals to 15 per second.
class SignalPace {
public:
    using Moment = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::milliseconds leastDistance{67};

    /// How long to wait before the next signal; zero if none.
    std::chrono::milliseconds waitAt(Moment now) const {
        using namespace std::chrono;
        if (!last_) {
            return milliseconds(0);
        }
        return std::clamp(ceil<milliseconds>(*last_ + leastDistance - now), milliseconds(0),
                          leastDistance);
    }

    void signalledAt(Moment now) { last_ = now; }

private:
    std::optional<Moment> last_;
};

} // namespace vantoro::desktop
