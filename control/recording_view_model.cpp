// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_view_model.h"

#include <chrono>
#include <utility>

#include "control/elapsed_time.h"
#include "control/recording_folder.h"
#include "control/transitions.h"
#include "l10n/texts/error_description.h"
#include "l10n/track_names.h"

namespace vantoro {

RecordingViewModel::RecordingViewModel(std::unique_ptr<Recorder> recorder,
                                       const ControlPlatform& platform)
    : RecordingProperties(recordingFolder(platform.preferences.get(Preference::outputDirectory),
                                          platform.defaultRecordingFolder),
                          platform.levels),
      platform_(platform),
      texts_(platform.preferences),
      recorder_(std::move(recorder)),
      salvage_(
          platform.scheduler, recorder_,
          [&preferences = platform.preferences] { return trackNames(preferences); },
          [this](const auto& result) { recovered(result); }),
      survey_(platform.scheduler, platform.audioDevices, platform.microphoneAccess,
              [this](const auto& survey) { surveyed(survey); }) {
    installCallbacks();
    connect(this, &RecordingProperties::propertyChanged, this, [this](Property property) {
        if (property == Property::systemVolume || property == Property::microphoneVolume) {
            expectVolumes();
        }
    });
    powerObservation_ = platform_.power.observe([this] { handleStop(StopReason::systemSleep); },
                                                [this] {
                                                    refreshDevicesAndPermissions();
                                                    recoverIncompleteRecordings();
                                                });
    refreshDevicesAndPermissions();
    recoverIncompleteRecordings();
}

std::string RecordingViewModel::statusText() const {
    return texts_.text(statusKey(values().state.which()));
}

void RecordingViewModel::toggleRecording() {
    if (values().state.which() == RecordingState::Case::recording) {
        stopRecording(StopReason::user);
    } else {
        startRecording();
    }
}

void RecordingViewModel::stopRecording() {
    handleStop(StopReason::user);
}

int RecordingViewModel::mark(std::string text) {
    constexpr int maxMarks = 255;
    if (values().state.which() != RecordingState::Case::recording || marks_ == maxMarks) {
        return 0;
    }
    ++marks_;
    recorder_->mark(text.empty() ? texts_.mark(marks_) : std::move(text));
    return marks_;
}

void RecordingViewModel::startRecording() {
    if (!canStart()) {
        return;
    }
    salvage_.suspend();
    endWork();
    setState(RecordingState::Case::preparing);
    setErrorMessage(std::nullopt);
    set(Property::lastRecordingURL, &Values::lastRecordingURL, std::nullopt);
    pendingStopReason_.reset();
    lost_ = {};
    marks_ = 0;
    interruption_ = nullptr;
    sleepHold_ = platform_.power.holdOffSleep(texts_.text(L10n::Key::recording));
    resetLevels();
    resetConditions();
    expectVolumes();
    const RecordingOptions options{
        .captureSystemAudio = values().captureSystemAudio,
        .captureMicrophone = values().captureMicrophone,
        .microphoneDeviceID = values().selectedMicrophoneID,
        .outputDirectory = values().outputDirectory,
        .title = values().title,
        .trackNames = trackNames(platform_.preferences),
    };
    runTask(
        platform_.scheduler, QPointer(this),
        [recorder = recorder_, options] { recorder->start(options); },
        [](RecordingViewModel& model, const Answer<void>& answer) {
            answer ? model.started() : model.startFailed(answer.error());
        });
}

void RecordingViewModel::expectVolumes() {
    recorder_->expectVolumes(static_cast<float>(values().systemVolume),
                             static_cast<float>(values().microphoneVolume));
}

void RecordingViewModel::started() {
    set(Property::elapsedSeconds, &Values::elapsedSeconds, 0);
    setState(RecordingState::Case::recording);
    refreshDevicesAndPermissions(); // starting may have granted a permission
    if (const auto reason = std::exchange(pendingStopReason_, std::nullopt)) {
        stopRecording(*reason);
    } else {
        startTimer();
    }
}

void RecordingViewModel::startFailed(const std::exception_ptr& error) {
    pendingStopReason_.reset();
    resetConditions();
    fail(error, false);
    recoverIncompleteRecordings();
}

void RecordingViewModel::stopRecording(StopReason reason) {
    if (values().state.which() != RecordingState::Case::recording) {
        return;
    }
    lastStopReason_ = reason;
    timer_.reset();
    if (values().errorMessage) {
        setErrorMessage(std::nullopt); // clears the warning about disk space
    }
    endWork();
    setState(RecordingState::Case::processing);
    resetLevels();
    resetConditions();
    platform_.scheduler.runOnMainThread([model = QPointer(this), reason] {
        if (model) {
            model->finishRecording(reason);
        }
    });
}

void RecordingViewModel::finishRecording(StopReason reason) {
    runTask(
        platform_.scheduler, QPointer(this),
        [recorder = recorder_, system = static_cast<float>(values().systemVolume),
         microphone = static_cast<float>(values().microphoneVolume)] {
            return recorder->stop(system, microphone);
        },
        [reason](RecordingViewModel& model, const Answer<std::filesystem::path>& answer) {
            answer ? model.saved(*answer, reason) : model.stopFailed(answer.error());
        });
}

void RecordingViewModel::saved(const std::filesystem::path& recording, StopReason reason) {
    endWork();
    set(Property::lastRecordingURL, &Values::lastRecordingURL, recording);
    setState(RecordingState::Case::completed);
    const auto onTracks = lost_.textOnTracks(texts_);
    if (lost_.isAny()) {
        setErrorMessage(L10n::sentences({lost_.text(texts_), texts_.restSaved(), onTracks}));
    } else if (const auto key = savedMessageKey(reason)) {
        const bool isBroken = reason == StopReason::captureInterruption;
        setErrorMessage(
            L10n::sentences({texts_.text(*key), isBroken ? interruptionText() : "", onTracks}));
    } else if (!onTracks.empty()) {
        setErrorMessage(onTracks);
    }
    salvage_.resume(values().outputDirectory);
}

void RecordingViewModel::stopFailed(const std::exception_ptr& error) {
    endWork();
    fail(error, recorder_->hasKeptRecording());
    recoverIncompleteRecordings();
}

void RecordingViewModel::fail(const std::exception_ptr& error, bool preserveCheckpoint) {
    timer_.reset();
    sleepHold_.reset();
    const auto description = errorDescription(error, texts_.language());
    setState(RecordingState::failed(description));
    const auto interruption = interruptionText();
    setErrorMessage(
        L10n::sentences({description + (preserveCheckpoint ? texts_.checkpointKept() : ""),
                         lost_.text(texts_), interruption == description ? "" : interruption}));
    refreshDevicesAndPermissions(); // shows a permission that was refused
}

/// Empty if nothing broke it.
std::string RecordingViewModel::interruptionText() const {
    return interruption_ ? errorDescription(interruption_, texts_.language()) : std::string();
}

void RecordingViewModel::startTimer() {
    timer_ = platform_.scheduler.startTimer(std::chrono::seconds(1), [this] {
        set(Property::elapsedSeconds, &Values::elapsedSeconds, nextSecond(values().elapsedSeconds));
    });
}

void RecordingViewModel::handleStop(StopReason reason) {
    if (values().state.which() == RecordingState::Case::preparing) {
        pendingStopReason_ = pendingStop(pendingStopReason_, reason);
    } else {
        stopRecording(reason);
    }
}

void RecordingViewModel::recoverIncompleteRecordings() {
    if (!isBusy(values().state.which())) {
        endWork(); // of a salvage that this one replaces
        salvage_.start(values().outputDirectory);
    }
}

void RecordingViewModel::recovered(const SalvageResult& result) {
    if (!isBusy(values().state.which())) {
        endWork();
    }
    if (!result.recordings.empty() && !isBusy(values().state.which())) {
        // After a failed stop, the salvaged recording is the one that failed.
        const bool isOfTheFailed = values().state.which() == RecordingState::Case::failed;
        set(Property::lastRecordingURL, &Values::lastRecordingURL, result.recordings.back());
        setState(RecordingState::Case::completed);
        setErrorMessage(L10n::sentences(
            {texts_.recovered(result.recordings.size()), texts_.originalsKept(result.keptOriginals),
             result.tracksNotKept.empty() ? "" : texts_.tracksNotKept(result.tracksNotKept.back()),
             isOfTheFailed ? lost_.text(texts_) : ""}));
    }
    Q_EMIT salvageEnded();
}

void RecordingViewModel::refreshDevicesAndPermissions() {
    survey_.start();
}

void RecordingViewModel::surveyed(const Survey& survey) {
    setSurveyed();
    set(Property::hasScreenPermission, &Values::hasScreenPermission, survey.mayCapture);
    set(Property::microphonePermission, &Values::microphonePermission, survey.microphonePermission);
    set(Property::microphones, &Values::microphones, survey.microphones);
    const auto& selected = values().selectedMicrophoneID;
    auto choice = chooseMicrophone(selected, survey.microphones, survey.defaultMicrophone);
    if (choice != selected) {
        setSelectedMicrophoneID(std::move(choice));
    }
}

void RecordingViewModel::chooseOutputDirectory() {
    platform_.folderDialog.choose({.title = texts_.text(L10n::Key::chooseRecordingFolder),
                                   .prompt = texts_.text(L10n::Key::choose),
                                   .directory = values().outputDirectory,
                                   .language = texts_.language()},
                                  [model = QPointer(this)](const auto& folder) {
                                      if (model && folder) {
                                          model->moveTo(*folder);
                                      }
                                  });
}

void RecordingViewModel::moveTo(const std::filesystem::path& outputDirectory) {
    set(Property::outputDirectory, &Values::outputDirectory, outputDirectory);
    platform_.preferences.set(Preference::outputDirectory, outputDirectory.string());
    recoverIncompleteRecordings();
}

void RecordingViewModel::revealOutputDirectory() {
    platform_.opener.openFolder(values().outputDirectory);
}

void RecordingViewModel::playLastRecording() {
    if (const auto& recording = values().lastRecordingURL) {
        platform_.opener.open(*recording);
    }
}

void RecordingViewModel::revealLastRecording() {
    if (const auto& recording = values().lastRecordingURL) {
        platform_.opener.reveal(*recording);
    }
}

void RecordingViewModel::openMicrophoneSettings() {
    platform_.opener.openPrivacySettings("Privacy_Microphone");
}

void RecordingViewModel::openScreenCaptureSettings() {
    platform_.opener.openPrivacySettings("Privacy_ScreenCapture");
}

} // namespace vantoro
