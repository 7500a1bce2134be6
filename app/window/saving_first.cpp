// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/saving_first.h"

#include <utility>

#include "control/transitions.h"

namespace vantoro {

SavingFirst::SavingFirst(RecordingViewModel& model) : model_(model) {
    // Behind the change, not within it: what is done about it finds the view model at rest.
    connect(&model_, &RecordingProperties::stateChanged, this, &SavingFirst::goOn,
            Qt::QueuedConnection);
}

void SavingFirst::request(Done done) {
    if (!isBusy(model_.values().state.which())) {
        done(true);
        return;
    }
    waiting_.push_back(std::move(done));
    goOn();
}

/// Also a recording that was begun since then is stopped.
void SavingFirst::goOn() {
    if (!isUnderWay()) {
        return;
    }
    const auto state = model_.values().state.which();
    if (isBusy(state)) {
        model_.stopRecording();
        return;
    }
    for (const auto& done : std::exchange(waiting_, {})) {
        done(state != RecordingState::Case::failed);
    }
}

} // namespace vantoro
