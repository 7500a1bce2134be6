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

/// The devices and permissions, at one moment.
struct Survey {
    bool hasScreenPermission = false;
    AuthorizationStatus microphonePermission = AuthorizationStatus::notDetermined;
    std::vector<AudioInputDevice> microphones;
    std::optional<std::string> defaultMicrophone;
};

/// Looks up devices and permissions; this may take seconds on a faulty desktop. Never prompts the
/// user. Main thread.
class SurveyTask final : public QObject {
public:
    /// The ports are called on task threads, and must outlive the scheduler's work.
    SurveyTask(Scheduler& scheduler, AudioDevices& devices, MicrophoneAccess& microphone,
               std::function<void(const Survey&)> onSurveyed);

    /// Calls `onSurveyed` with the state at this moment or later. Requests made during a survey
    /// share one survey after it.
    void start();

private:
    void begin();
    void finish(const Answer<Survey>& answer);

    Scheduler& scheduler_;
    AudioDevices& devices_;
    MicrophoneAccess& microphone_;
    std::function<void(const Survey&)> onSurveyed_;
    bool running_ = false;
    bool again_ = false; // requested while one runs, which may already have looked
};

} // namespace vantoro
