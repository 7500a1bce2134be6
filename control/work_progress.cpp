// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/work_progress.h"

#include <algorithm>
#include <cmath>

#include "control/elapsed_time.h"
#include "l10n/texts/progress_texts.h"

namespace vantoro {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::duration<double> leastExperience = 1s; // earlier, the estimate would jump

} // namespace

void ProgressAccount::advance(double fraction, TimePoint now) {
    progress_.fraction = std::clamp(fraction, 0.0, 1.0);
    if (!first_ || progress_.fraction < firstFraction_) { // or it starts again
        first_ = now;
        firstFraction_ = progress_.fraction;
    }
    const std::chrono::duration<double> passed = now - *first_;
    const double done = progress_.fraction - firstFraction_;
    progress_.left.reset();
    if (passed >= leastExperience && done > 0) {
        const auto left = passed * (1 - progress_.fraction) / done;
        progress_.left = std::chrono::ceil<std::chrono::seconds>(left);
    }
}

std::string progressText(const WorkProgress& progress, const L10n& texts) {
    const auto language = texts.language();
    auto text = std::to_string(std::lround(progress.fraction * 100)) + " %";
    if (progress.left) {
        text = ProgressText::timeLeft.in(language,
                                         {text, formattedElapsedTime(progress.left->count())});
    }
    return progress.work == WorkProgress::Work::saving ? text
                                                       : ProgressText::salvage.in(language, {text});
}

} // namespace vantoro
