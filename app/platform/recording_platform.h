// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "control/recording_view_model.h"
#include "control/tasks/qt_scheduler.h"
#include "engine/recorder/audio_recorder.h"
#include "platform/desktop/opening/desktop_opener.h"
#include "platform/desktop/permission/microphone_access.h"
#include "platform/desktop/power/power_management.h"
#include "platform/desktop/power/power_profile.h"
#include "platform/ffmpeg/loaded_toolkit.h"
#include "platform/journal/journal.h"
#include "platform/pipewire/pipewire_capture.h"
#include "platform/pipewire/sound_server.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"
#include "ui/window/window_folder_dialog.h"

namespace vantoro {

/// All platform services that recording needs. Must outlive the recorder and the view model; the
/// destructor waits for their remaining work. Main thread.
class RecordingPlatform {
public:
    /// Whether levels are displayed.
    enum class Meters : std::uint8_t { shown, none };

    explicit RecordingPlatform(
        Meters meters, QtScheduler::TaskStart taskStart = QtScheduler::TaskStart::immediate);
    RecordingPlatform(const RecordingPlatform&) = delete;
    RecordingPlatform& operator=(const RecordingPlatform&) = delete;
    ~RecordingPlatform() = default;

    /// Sets the microphone to record, unless it is the default; its permission may depend on it.
    void setChosenMicrophone(std::optional<std::string> id);

    /// Starts deferred tasks.
    void startTasks() { scheduler_.startTasks(); }

    /// A recorder whose recordings are in the journal.
    std::unique_ptr<Recorder> makeRecorder();
    RecorderPlatform forRecorder();

    /// `preferences` must outlive the view model. For `recorderProgressed` see `ControlPlatform`.
    ControlPlatform forControl(Preferences& preferences,
                               std::function<void()> recorderProgressed = {});

private:
    std::optional<std::string> chosenMicrophone();

    journal::Journal journal_;
    std::mutex mutex_;
    std::optional<std::string> chosenMicrophone_; // guarded by mutex_
    pipewire::SoundServer soundServer_;
    pipewire::PipeWireCapture captureService_;
    desktop::DesktopMicrophoneAccess microphoneAccess_;
    desktop::DesktopPowerManagement power_;
    desktop::DesktopOpener opener_;
    WindowFolderDialog folderDialog_;
    posix::PosixFileSystem fileSystem_;
    ffmpeg::LoadedToolkit mediaToolkit_{
        fileSystem_, [] { return desktop::isPowerSaved(desktop::standardBusAddresses()); }};
    posix::SystemClock clock_;
    QtScheduler scheduler_; // last: its work ends before the members it uses are destroyed
};

} // namespace vantoro
