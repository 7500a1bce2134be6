// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/ending_account.h"

#include <utility>

namespace vantoro {

bool EndingAccount::asked(EndingRequest request, TimePoint now) {
    if (!isAsked() && !status_) {
        lastMove_ = now;
        isUnheard_ = !isAttended_;
    }
    if (request == EndingRequest::quitting) {
        isQuitting_ = true;
        return false;
    }
    if (request == EndingRequest::signal) {
        isImpatient_ = isImpatient_ || (firstSignal_ && now - *firstSignal_ >= sameWish);
        firstSignal_ = firstSignal_.value_or(now);
    }
    return !std::exchange(isSignalled_, true);
}

void EndingAccount::concluded(int status, TimePoint now) {
    status_ = status;
    lastMove_ = now;
}

EndingStep EndingAccount::step(TimePoint now) const {
    if (!isAsked() && !status_) {
        return EndingStep::goOn;
    }
    return isImpatient_ || isUnheard_ || now - lastMove_ >= longestStandstill
               ? EndingStep::endAtOnce
               : EndingStep::wait;
}

std::optional<EndingAccount::TimePoint> EndingAccount::deadline() const {
    return step(lastMove_) == EndingStep::wait ? std::optional(lastMove_ + longestStandstill)
                                               : std::nullopt;
}

} // namespace vantoro
