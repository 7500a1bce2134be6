// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/tasks/survey_task.h"

#include <utility>

namespace vantoro {

SurveyTask::SurveyTask(Scheduler& scheduler, AudioDevices& devices, MicrophoneAccess& microphone,
                       std::function<void(const Survey&)> onSurveyed)
    : scheduler_(scheduler),
      devices_(devices),
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
        [&devices = devices_, &microphone = microphone_] {
            Survey survey;
            auto found = devices.find();
            survey.hasScreenPermission = found.mayCapture;
            survey.microphonePermission = microphone.status();
            survey.microphones = std::move(found.microphones);
            survey.defaultMicrophone = std::move(found.defaultMicrophone);
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
