// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/remote_recording.h"

#include <utility>

#include "control/transitions.h"

namespace vantoro {

RemoteRecording::RemoteRecording(RecordingViewModel& model, ShowWindow showWindow)
    : model_(model), showWindow_(std::move(showWindow)) {
    // Queued: the message follows the state.
    connect(&model_, &RecordingProperties::stateChanged, this, &RemoteRecording::stateChanged,
            Qt::QueuedConnection);
}

void RemoteRecording::start(const std::string& activationToken) {
    if (isBusy(model_.values().state.which())) {
        return;
    }
    if (model_.canStart()) {
        token_ = activationToken;
        model_.startRecording();
    } else {
        showWindow_(activationToken); // both sources are off, as the window shows
    }
}

void RemoteRecording::stop(const std::string& activationToken) {
    if (isBusy(model_.values().state.which())) {
        token_ = activationToken;
        model_.stopRecording();
    }
}

void RemoteRecording::stateChanged() {
    const auto state = model_.values().state.which();
    if (isBusy(state)) {
        return;
    }
    const auto token = std::exchange(token_, std::nullopt);
    if (token && state == RecordingState::Case::failed) {
        showWindow_(*token);
    }
}

} // namespace vantoro
