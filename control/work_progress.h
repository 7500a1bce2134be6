// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "l10n/l10n.h"

namespace vantoro {

/// Work on final files, as the user sees it.
struct WorkProgress {
    enum class Work : std::uint8_t { saving, salvage };

    Work work = Work::saving;
    double fraction = 0;                      ///< 0 to 1
    std::optional<std::chrono::seconds> left; ///< an estimate, once there is one

    friend bool operator==(const WorkProgress&, const WorkProgress&) = default;
};

/// Work that ends sooner is not shown.
constexpr std::chrono::milliseconds unshownWork{500};

/// Estimates when work ends from how fast it went so far, apart from what was done before.
class ProgressAccount {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    explicit ProgressAccount(WorkProgress::Work work) : progress_{.work = work, .left = {}} {}

    void advance(double fraction, TimePoint now);

    const WorkProgress& progress() const { return progress_; }

private:
    WorkProgress progress_;
    double firstFraction_ = 0;
    std::optional<TimePoint> first_;
};

/// "43 %", or "43 %, 00:12 left"; names a salvage.
std::string progressText(const WorkProgress& progress, const L10n& texts);

} // namespace vantoro
