// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/saving_first.h"

#include <utility>

namespace vantoro {

SavingFirst::SavingFirst(RecordingViewModel& model) : model_(model) {
    // Behind the change, not within it: what is done about it finds the view model at rest.
    connect(
        &model_, &RecordingProperties::stateChanged, this,
        [this] {
            if (isUnderWay()) {
                stateChanged();
            }
        },
        Qt::QueuedConnection);
}

void SavingFirst::request(Done done) {
    const auto step = savingStep(model_.values().state.which());
    if (step == SavingStep::none) {
        done(true);
        return;
    }
    waiting_.push_back(std::move(done));
    if (step == SavingStep::stop) {
        model_.toggleRecording();
    }
}

void SavingFirst::stateChanged() {
    const auto state = model_.values().state.which();
    switch (savingStep(state)) {
    case SavingStep::none:
        conclude(state != RecordingState::Case::failed);
        break;
    case SavingStep::stop:
        model_.toggleRecording();
        break;
    case SavingStep::wait:
        break;
    }
}

void SavingFirst::conclude(bool saved) {
    for (const auto& done : std::exchange(waiting_, {})) {
        done(saved);
    }
}

SavingStep savingStep(RecordingState::Case state) {
    switch (state) {
    case RecordingState::Case::preparing: // which cannot be stopped until it records
    case RecordingState::Case::processing:
        return SavingStep::wait;
    case RecordingState::Case::recording:
        return SavingStep::stop;
    default:
        return SavingStep::none;
    }
}

} // namespace vantoro
