// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/lost_sound.h"

#include <algorithm>

namespace vantoro {

void LostSound::add(const SoundLoss& loss) {
    if (loss.cause == SoundLoss::Cause::notWritten) {
        notWritten_ = loss;
    } else {
        notTakenInTime_[loss.source] += loss.seconds;
    }
}

std::string LostSound::text(const L10n& texts) const {
    std::string text;
    if (!notTakenInTime_.empty()) {
        // Sources lose the same stretch of time, each its sound.
        const auto longest = std::ranges::max_element(notTakenInTime_, {},
                                                      [](const auto& lost) { return lost.second; });
        text = texts.soundNotTakenInTime(longest->second);
    }
    if (notWritten_) {
        const std::string space = text.empty() ? "" : " ";
        text += space + texts.soundNotWritten(notWritten_->seconds, notWritten_->reason);
    }
    return text;
}

} // namespace vantoro
