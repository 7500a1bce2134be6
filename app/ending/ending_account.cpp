// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ending/ending_account.h"

#include <utility>

namespace vantoro {

bool EndingAccount::recordRequest(EndingRequest request, TimePoint now) {
    if (!isRequested() && !status_) {
        lastProgress_ = now;
        isUnhandled_ = !hasHandler_;
    }
    if (request == EndingRequest::quitting) {
        isQuitting_ = true;
        return false;
    }
    if (request == EndingRequest::signal) {
        isImpatient_ = isImpatient_ || (firstSignal_ && now - *firstSignal_ >= sameRequest);
        firstSignal_ = firstSignal_.value_or(now);
    }
    return !std::exchange(isSignalled_, true);
}

void EndingAccount::concluded(int status, TimePoint now) {
    status_ = status;
    lastProgress_ = now;
}

EndingStep EndingAccount::step(TimePoint now) const {
    if (!isRequested() && !status_) {
        return EndingStep::goOn;
    }
    return isImpatient_ || isUnhandled_ || now - lastProgress_ >= longestStandstill
               ? EndingStep::endAtOnce
               : EndingStep::wait;
}

std::optional<EndingAccount::TimePoint> EndingAccount::deadline() const {
    return step(lastProgress_) == EndingStep::wait
               ? std::optional(lastProgress_ + longestStandstill)
               : std::nullopt;
}

} // namespace vantoro
