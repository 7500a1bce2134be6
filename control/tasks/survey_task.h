// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QObject>

#include "control/ports/audio_devices.h"
#include "control/ports/scheduler.h"
#include "control/tasks/task.h"
#include "engine/ports/permissions.h"

namespace vantoro {

/// What there is to record with, and whether it may be, as found at one moment.
struct Survey {
    bool hasScreenPermission = false;
    AuthorizationStatus microphonePermission = AuthorizationStatus::notDetermined;
    std::vector<AudioInputDevice> microphones;
    std::optional<std::string> defaultMicrophone;
};

/// Looks at devices and permissions, which may take seconds when the desktop is not well. Never
/// asks the user. Main thread.
class SurveyTask final : public QObject {
public:
    /// The ports, which outlive the scheduler's work, are called on task threads.
    SurveyTask(Scheduler& scheduler, AudioDevices& devices, MicrophoneAccess& microphone,
               std::function<void(const Survey&)> onSurveyed);

    /// `onSurveyed` is told what is there now or later. While one survey goes on, others that are
    /// asked for wait for it and are then done as one.
    void start();

private:
    void begin();
    void finish(const Answer<Survey>& answer);

    Scheduler& scheduler_;
    AudioDevices& devices_;
    MicrophoneAccess& microphone_;
    std::function<void(const Survey&)> onSurveyed_;
    bool running_ = false;
    bool again_ = false; // asked for when the one that runs may have looked already
};

} // namespace vantoro
