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
struct Survey : FoundDevices {
    AuthorizationStatus microphonePermission = AuthorizationStatus::notDetermined;
};

/// Looks up devices and permissions, for seconds on a faulty desktop. Main thread.
class SurveyTask final : public QObject {
public:
    /// The ports are called on task threads, and must outlive the scheduler's work.
    SurveyTask(Scheduler& scheduler, AudioDevices& devices, MicrophoneAccess& microphone,
               std::function<void(const Survey&)> onSurveyed);

    /// Surveys now, or once after the survey that runs, for all requests made meanwhile.
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

/// Picks a microphone: the selected one if it is listed, else the system default (listed or not),
/// else the first listed, else none.
std::optional<std::string> chooseMicrophone(const std::optional<std::string>& selected,
                                            const std::vector<AudioInputDevice>& microphones,
                                            const std::optional<std::string>& systemDefault);

} // namespace vantoro
