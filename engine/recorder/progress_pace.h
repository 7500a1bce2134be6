// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <utility>

#include "engine/ports/clock.h"
#include "engine/ports/recording.h"

namespace vantoro {

/// The progress of one piece of work, at most ten times a second and once it is complete. One
/// thread.
class ProgressPace {
public:
    static constexpr double distance = 0.1; ///< seconds

    /// Both must outlive it. `progress` may be empty.
    ProgressPace(const ExportProgress& progress, const Clock& clock)
        : progress_(progress), clock_(clock) {}

    void operator()(double fraction) {
        const double now = clock_.systemUptime();
        if (progress_ && (!last_ || fraction >= 1 || now - *last_ >= distance)) {
            last_ = now;
            progress_(fraction);
        }
    }

private:
    const ExportProgress& progress_;
    const Clock& clock_;
    std::optional<double> last_;
};

} // namespace vantoro
