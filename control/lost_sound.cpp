// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/lost_sound.h"

#include <algorithm>

namespace vantoro {

void LostSound::add(const SoundLoss& loss) {
    if (loss.cause == SoundLoss::Cause::notWritten) {
        notWritten_ = loss;
    } else {
        notTakenInTime_[loss.source] += loss.length;
    }
}

std::string LostSound::text(const L10n& texts) const {
    std::string notTakenInTime;
    if (!notTakenInTime_.empty()) {
        // Both sources lose the same stretch of time, so count it once.
        const auto longest = std::ranges::max_element(notTakenInTime_, {},
                                                      [](const auto& lost) { return lost.second; });
        notTakenInTime = texts.soundNotTakenInTime(longest->second);
    }
    return L10n::sentences(
        {notTakenInTime,
         notWritten_ ? texts.soundNotWritten(notWritten_->length, notWritten_->reason) : ""});
}

} // namespace vantoro
