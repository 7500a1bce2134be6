// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/saving_first.h"

#include <utility>

#include "control/transitions.h"

namespace vantoro {

SavingFirst::SavingFirst(RecordingViewModel& model) : model_(model) {
    // Queued, so that `done` sees the view model after the change is complete.
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

/// Also stops a recording that was started in the meantime.
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
