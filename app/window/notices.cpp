// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/notices.h"

#include <utility>

namespace vantoro {

namespace {

std::string topicOf(AudioLevelSource source) {
    return source == AudioLevelSource::systemAudio ? "system-audio" : "microphone";
}

} // namespace

Notices::Notices(Surroundings surroundings)
    : surroundings_(std::move(surroundings)),
      texts_(surroundings_.preferences),
      state_(surroundings_.model.values().state.which()) {
    connect(&surroundings_.model, &RecordingProperties::stateChanged, this, &Notices::stateChanged);
    connect(&surroundings_.model, &RecordingProperties::propertyChanged, this,
            [this](RecordingProperties::Property property) {
                using enum RecordingProperties::Property;
                if (property == elapsedSeconds || property == systemAudioCondition ||
                    property == microphoneCondition) {
                    lookAtSources();
                }
            });
    surroundings_.notifications.setChosen(
        [this](const auto& topic, const auto& action, const auto& token) {
            carryOut(topic, action, token);
        });
}

Notices::~Notices() {
    surroundings_.notifications.setChosen({});
}

void Notices::windowCameToFront() {
    for (const auto& [topic, recording] : std::exchange(shown_, {})) {
        surroundings_.notifications.withdraw(topic);
    }
}

void Notices::stateChanged() {
    const auto now = surroundings_.model.values().state.which();
    const auto outcome =
        outcomeOf(std::exchange(state_, now), now, surroundings_.model.lastStopReason());
    if (now == RecordingState::Case::preparing) {
        troubles_ = {};
    }
    if (outcome) {
        // Queued: the message follows the state.
        QMetaObject::invokeMethod(
            this, [this, what = *outcome] { showOutcome(what); }, Qt::QueuedConnection);
    }
}

void Notices::showOutcome(Outcome outcome) {
    const auto& values = surroundings_.model.values();
    const auto expected =
        outcome == Outcome::failed ? RecordingState::Case::failed : RecordingState::Case::completed;
    if (state_ != expected || surroundings_.isWindowInFront()) {
        return;
    }
    const auto& recording = values.lastRecordingURL;
    const auto topic = "recording-" + std::to_string(++outcomes_);
    shown_[topic] = recording;
    surroundings_.notifications.show(
        topic, outcomeNotification(outcome, recording, values.errorMessage.value_or(""), texts_));
}

void Notices::lookAtSources() {
    const auto& values = surroundings_.model.values();
    lookAt(AudioLevelSource::systemAudio, values.systemAudioCondition);
    lookAt(AudioLevelSource::microphone, values.microphoneCondition);
}

void Notices::lookAt(AudioLevelSource source, SourceCondition condition) {
    const auto topic = topicOf(source);
    if (condition == SourceCondition::delivering && shown_.erase(topic) > 0) {
        surroundings_.notifications.withdraw(topic);
    }
    auto& trouble = troubles_.at(static_cast<std::size_t>(source));
    if (trouble.isToBeTold(condition, surroundings_.model.values().elapsedSeconds) &&
        !surroundings_.isWindowInFront()) {
        shown_[topic] = std::nullopt;
        surroundings_.notifications.show(topic, troubleNotification(source, condition, texts_));
    }
}

void Notices::carryOut(const std::string& topic, const std::string& action,
                       const std::string& token) {
    const auto found = shown_.find(topic);
    if (action.empty() || found == shown_.end() || !found->second) {
        surroundings_.showMainWindow(token);
    } else if (action == playAction) {
        surroundings_.opener.open(*found->second);
    } else {
        surroundings_.opener.reveal(*found->second);
    }
}

} // namespace vantoro
