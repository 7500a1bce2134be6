// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/remote_control.h"

#include <chrono>
#include <expected>
#include <utility>

#include <QtCore/QMetaObject>

#include "control/transitions.h"
#include "platform/desktop/opening/file_uri.h"

namespace vantoro {

namespace {

using Case = RecordingState::Case;

std::unexpected<desktop::ControlFailure> failure(const char* error, std::string text) {
    return std::unexpected(desktop::ControlFailure{.error = error, .text = std::move(text)});
}

std::int64_t now() {
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

/// Whether a change of it is signalled by itself, rather than read by whoever follows it.
bool isSignalled(RecordingProperties::Property property) {
    using enum RecordingProperties::Property;
    return property != elapsedSeconds && property != progress && property != systemAudioLevel &&
           property != microphoneLevel;
}

} // namespace

std::string controlWord(RecordingState::Case state) {
    switch (state) {
    case Case::idle:
        return "idle";
    case Case::preparing:
        return "preparing";
    case Case::recording:
        return "recording";
    case Case::processing:
        return "processing";
    case Case::completed:
        return "completed";
    case Case::failed:
        break;
    }
    return "failed";
}

std::string controlWord(SourceCondition condition) {
    switch (condition) {
    case SourceCondition::delivering:
        return "delivering";
    case SourceCondition::silent:
        return "silent";
    case SourceCondition::muted:
        return "muted";
    case SourceCondition::coded:
        break;
    }
    return "coded";
}

RemoteControl::RemoteControl(RecordingViewModel& model, desktop::ControlService& service,
                             Action start, Action stop)
    : model_(model), service_(&service), start_(std::move(start)), stop_(std::move(stop)) {
    connect(&model_, &RecordingProperties::stateChanged, this, &RemoteControl::noteState);
    // Queued: the message and the place follow the state.
    const auto answer = [this] {
        answerStarts();
        answerStops();
    };
    connect(&model_, &RecordingProperties::stateChanged, this, answer, Qt::QueuedConnection);
    connect(&model_, &RecordingViewModel::salvageEnded, this, [this] {
        isSalvageOver_ = true;
        answerStops();
    });
    connect(&model_, &RecordingProperties::propertyChanged, this, [this](auto property) {
        if (isSignalled(property)) {
            schedulePublishing();
        }
    });
    service.serve(this);
}

RemoteControl::~RemoteControl() {
    if (service_) {
        service_->serve(nullptr);
    }
}

desktop::ControlStatus RemoteControl::status() const {
    const auto& values = model_.values();
    const auto uri = [](const auto& path) { return desktop::fileURI(path); };
    return {.state = controlWord(state()),
            .startedAt = startedAt_,
            .elapsedSeconds = values.elapsedSeconds,
            .savingProgress = values.progress ? values.progress->fraction : 0,
            .systemAudio = {.isOn = values.captureSystemAudio,
                            .level = values.systemAudioLevel,
                            .condition = controlWord(values.systemAudioCondition)},
            .microphone = {.isOn = values.captureMicrophone,
                           .level = values.microphoneLevel,
                           .condition = controlWord(values.microphoneCondition)},
            .microphoneID = values.selectedMicrophoneID.value_or(""),
            .folder = uri(isBusy(state()) ? folder_ : values.outputDirectory),
            .lastRecording = values.lastRecordingURL.transform(uri).value_or(""),
            .message = values.errorMessage.value_or("")};
}

void RemoteControl::start(const std::string& activationToken, desktop::StartAnswer answered) {
    if (state() == Case::processing) {
        answered(failure(desktop::savingError, "the last recording is still being saved"));
        return;
    }
    if (state() == Case::recording) {
        answered({});
        return;
    }
    starts_.push_back(std::move(answered));
    if (!isUnderWay(state())) {
        start_(activationToken);
    }
    if (!isUnderWay(state())) {
        for (const auto& told : std::exchange(starts_, {})) {
            told(failure(desktop::noSourceError, "both sources are off"));
        }
    }
}

void RemoteControl::stop(const std::string& activationToken, desktop::StopAnswer answered) {
    if (!isBusy(state())) {
        answered(failure(desktop::notRecordingError, "nothing is being recorded"));
        return;
    }
    stops_.push_back(std::move(answered));
    stop_(activationToken);
}

std::expected<std::uint32_t, desktop::ControlFailure> RemoteControl::mark(const std::string& text) {
    if (state() != Case::recording) {
        return failure(desktop::notRecordingError, "nothing is being recorded");
    }
    if (const int number = model_.mark(text); number > 0) {
        return static_cast<std::uint32_t>(number);
    }
    return failure(desktop::fullError, "the recording holds no more marks");
}

/// At once, so that no state is missed.
void RemoteControl::noteState() {
    switch (state()) {
    case Case::preparing:
        failStops(); // of a recording before this one
        startedAt_ = now();
        folder_ = model_.values().outputDirectory;
        hasBegun_ = false;
        break;
    case Case::recording:
    case Case::processing:
        hasBegun_ = true;
        break;
    case Case::failed:
        isSalvageOver_ = !hasBegun_;
        break;
    default:
        break;
    }
}

void RemoteControl::answerStarts() {
    if (state() == Case::preparing) {
        return;
    }
    const bool hasFailed = state() == Case::failed && !hasBegun_;
    for (const auto& told : std::exchange(starts_, {})) {
        if (hasFailed) {
            told(failure(desktop::failedError, model_.values().errorMessage.value_or("")));
        } else {
            told({});
        }
    }
}

void RemoteControl::answerStops() {
    if (state() == Case::completed) {
        const auto& values = model_.values();
        const desktop::SavedRecording saved{
            .uri = values.lastRecordingURL.transform(desktop::fileURI).value_or(""),
            .isComplete = !model_.isIncomplete(),
            .message = values.errorMessage.value_or("")};
        for (const auto& told : std::exchange(stops_, {})) {
            told(saved);
        }
    } else if (state() == Case::failed && isSalvageOver_) {
        failStops();
    }
}

void RemoteControl::failStops() {
    for (const auto& told : std::exchange(stops_, {})) {
        told(failure(desktop::failedError, model_.values().errorMessage.value_or("")));
    }
}

/// After all changes that belong together.
void RemoteControl::schedulePublishing() {
    if (std::exchange(isPublishingScheduled_, true)) {
        return;
    }
    QMetaObject::invokeMethod(
        this,
        [this] {
            isPublishingScheduled_ = false;
            if (service_) {
                service_->publish();
            }
        },
        Qt::QueuedConnection);
}

} // namespace vantoro
