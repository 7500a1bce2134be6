// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/tasks/survey_task.h"

#include <algorithm>
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
            auto found = devices.find();
            return Survey{std::move(found), microphone.status()};
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

std::optional<std::string> chooseMicrophone(const std::optional<std::string>& selected,
                                            const std::vector<AudioInputDevice>& microphones,
                                            const std::optional<std::string>& systemDefault) {
    if (selected &&
        std::ranges::find(microphones, *selected, &AudioInputDevice::id) != microphones.end()) {
        return selected;
    }
    if (systemDefault) {
        return systemDefault;
    }
    return microphones.empty() ? std::nullopt : std::optional(microphones.front().id);
}

} // namespace vantoro
