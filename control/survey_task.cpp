// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/survey_task.h"

#include <utility>

namespace vantoro {

SurveyTask::SurveyTask(Scheduler& scheduler, AudioDevices& devices, CaptureAccess& screenCapture,
                       MicrophoneAccess& microphone, std::function<void(const Survey&)> onSurveyed)
    : scheduler_(scheduler),
      devices_(devices),
      screenCapture_(screenCapture),
      microphone_(microphone),
      onSurveyed_(std::move(onSurveyed)) {}

void SurveyTask::start() {
    again_ = running_;
    if (!running_) {
        begin();
    }
}

void SurveyTask::begin() {
    running_ = true;
    runTask(
        scheduler_, QPointer(this),
        [&devices = devices_, &screenCapture = screenCapture_, &microphone = microphone_] {
            Survey survey;
            survey.hasScreenPermission = screenCapture.isGranted();
            survey.microphonePermission = microphone.status();
            survey.microphones = devices.microphones();
            survey.defaultMicrophone = devices.defaultMicrophone();
            return survey;
        },
        &SurveyTask::finish);
}

void SurveyTask::finish(const Answer<Survey>& answer) {
    running_ = false;
    if (std::exchange(again_, false)) {
        begin();
    }
    onSurveyed_(answer.value_or(Survey()));
}

} // namespace vantoro
