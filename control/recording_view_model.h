// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "control/audio_level_store.h"
#include "control/lost_sound.h"
#include "control/ports/audio_devices.h"
#include "control/ports/folder_dialog.h"
#include "control/ports/opener.h"
#include "control/ports/power_management.h"
#include "control/ports/scheduler.h"
#include "control/recording_properties.h"
#include "control/tasks/salvage_task.h"
#include "control/tasks/survey_task.h"
#include "control/tasks/task.h"
#include "engine/ports/permissions.h"
#include "engine/recorder/recorder.h"
#include "l10n/l10n.h"
#include "l10n/preferences.h"

namespace vantoro {

/// What the view model needs of the desktop. All of it outlives the view model, and the scheduler's
/// work ends before the rest does.
struct ControlPlatform {
    Scheduler& scheduler;
    PowerManagement& power;
    AudioDevices& audioDevices;
    MicrophoneAccess& microphoneAccess;
    Opener& opener;
    FolderDialog& folderDialog;
    Preferences& preferences;
    AudioLevelStore& levels;
    std::filesystem::path defaultRecordingFolder;
    /// A stop or a salvage has got on: for those who judge whether it hangs. On its thread. May be
    /// empty.
    std::function<void()> recorderProgressed = {};
};

/// The one object that the interface follows and gives its commands to: it starts and stops the
/// recorder, and makes of every failure a state and a message. Main thread; nothing here throws.
class RecordingViewModel final : public RecordingProperties {
    Q_OBJECT

public:
    /// Salvages what an earlier run left in the recording folder.
    RecordingViewModel(std::unique_ptr<Recorder> recorder, const ControlPlatform& platform);
    RecordingViewModel(const RecordingViewModel&) = delete;
    RecordingViewModel& operator=(const RecordingViewModel&) = delete;
    /// Cancels a salvage. What a running recording has captured stays in the recording folder.
    ~RecordingViewModel() override;

    /// Whether the recording that is made, or was last, lacks sound that was captured.
    bool hasLostSound() const noexcept { return lost_.isAny(); }

    /// How things stand, in the user's language.
    std::string statusText() const;

    /// Does nothing unless `canStart`.
    void startRecording();
    /// Stops a running recording, and one that is being prepared as soon as it has begun.
    void stopRecording();
    /// Stops a running recording, else as `startRecording`.
    void toggleRecording();
    /// Soon after, the properties say what there is now. Never asks the user for anything.
    void refreshDevicesAndPermissions();

    /// Lets the user choose where the next recordings go; remembered, and what lies interrupted in
    /// that folder is finished.
    void chooseOutputDirectory();
    void revealOutputDirectory();
    /// These two do nothing before there is a recording.
    void playLastRecording();
    void revealLastRecording();
    void openMicrophoneSettings();
    void openScreenCaptureSettings();

Q_SIGNALS:
    /// A salvage has ended that was not cancelled, whatever it found.
    void salvageEnded();

private:
    void installCallbacks();
    void observePowerState();

    void expectVolumes();
    void started();
    void startFailed(const std::exception_ptr& error);
    void stopRecording(StopReason reason);
    void finishRecording(StopReason reason);
    void saved(const std::filesystem::path& recording, StopReason reason);
    void stopFailed(const std::exception_ptr& error);
    void fail(const std::exception_ptr& error, bool preserveCheckpoint);

    void startTimer();
    void handleDidWake();
    void handleStop(StopReason reason);
    void handleInterruption(const std::exception_ptr& cause);
    std::string interruptionText() const;
    void handleDiskRoom(DiskRoom room);
    void handleSoundLoss(const SoundLoss& loss);
    void surveyed(const Survey& survey);
    void moveTo(const std::filesystem::path& outputDirectory);
    void recoverIncompleteRecordings();
    void recovered(const SalvageResult& result);

    void updateAudioLevel(AudioLevelSource source, float level);
    void updateCondition(AudioLevelSource source, SourceCondition condition);

    ControlPlatform platform_;
    L10n texts_;
    std::shared_ptr<Recorder> recorder_; // shared with the tasks, which may outlive this
    SalvageTask salvage_;
    SurveyTask survey_;
    std::unique_ptr<RepeatingTimer> timer_;       // while recording
    std::optional<StopReason> pendingStopReason_; // arrived while preparing
    LostSound lost_;                              // of the recording that is made, or was last
    std::exception_ptr interruption_;             // what broke the recording; or null
    std::unique_ptr<SleepHold> sleepHold_;        // until what was recorded is on the disk
    std::unique_ptr<PowerObservation> powerObservation_;
};

} // namespace vantoro
