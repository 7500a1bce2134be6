// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "control/control_platform.h"
#include "control/lost_sound.h"
#include "control/ports/power_management.h"
#include "control/ports/scheduler.h"
#include "control/recording_properties.h"
#include "control/tasks/salvage_task.h"
#include "control/tasks/survey_task.h"
#include "engine/recorder/recorder.h"
#include "l10n/l10n.h"

namespace vantoro {

/// Starts and stops the recorder, and turns every failure into a state and a message. Main thread;
/// never throws. Its destruction cancels a salvage; what a running recording has captured stays in
/// the recording folder.
class RecordingViewModel final : public RecordingProperties {
    Q_OBJECT

public:
    /// Salvages what an earlier run left in the recording folder.
    RecordingViewModel(std::unique_ptr<Recorder> recorder, const ControlPlatform& platform);

    /// Whether the current or last recording lacks captured sound, or the sources' own files.
    bool isIncomplete() const noexcept { return lost_.isAny() || lost_.lacksTracks(); }

    /// Why the last recording ended.
    StopReason lastStopReason() const noexcept { return lastStopReason_; }

    /// The status line, in the user's language.
    std::string statusText() const;

    /// Does nothing unless `canStart`.
    void startRecording();
    /// Stops a running recording; one that is starting stops as soon as it runs.
    void stopRecording();
    /// Stops a running recording; otherwise does what `startRecording` does.
    void toggleRecording();
    /// Marks this moment, with this text or else its number. Returns the number; 0 if nothing is
    /// being recorded, or there are 255 marks already, which is all that a file can hold.
    int mark(std::string text);
    /// Updates the properties soon after. Never prompts the user.
    void refreshDevicesAndPermissions();

    /// Asks for the folder of the next recordings, stores it, and salvages what it holds.
    void chooseOutputDirectory();
    void revealOutputDirectory();
    /// These two do nothing before there is a recording.
    void playLastRecording();
    void revealLastRecording();
    void openMicrophoneSettings();
    void openScreenCaptureSettings();

Q_SIGNALS:
    /// After each salvage that was not cancelled, whatever it found.
    void salvageEnded();

private:
    void installCallbacks();
    void expectVolumes();
    void started();
    void startFailed(const std::exception_ptr& error);
    void stopRecording(StopReason reason);
    void finishRecording(StopReason reason);
    void saved(const std::filesystem::path& recording, StopReason reason);
    void stopFailed(const std::exception_ptr& error);
    void fail(const std::exception_ptr& error, bool preserveCheckpoint);

    void startTimer();
    void handleStop(StopReason reason);
    void handleInterruption(const std::exception_ptr& cause);
    std::string interruptionText() const;
    void handleDiskRoom(DiskRoom room);
    void handleSoundLoss(const SoundLoss& loss);
    void surveyed(const Survey& survey);
    void moveTo(const std::filesystem::path& outputDirectory);
    void recoverIncompleteRecordings();
    void recovered(const SalvageResult& result);
    void beginWork(WorkProgress::Work work);
    void advance(WorkProgress::Work work, double fraction);
    void endWork();
    void updateAudioLevel(AudioLevelSource source, float level);
    void updateCondition(AudioLevelSource source, SourceCondition condition);

    ControlPlatform platform_;
    L10n texts_;
    std::shared_ptr<Recorder> recorder_; // shared with tasks, which may outlive this
    SalvageTask salvage_;
    SurveyTask survey_;
    std::unique_ptr<RepeatingTimer> timer_;       // while recording
    std::optional<StopReason> pendingStopReason_; // arrived while starting
    std::optional<ProgressAccount> work_;         // while saving or salvaging
    std::unique_ptr<RepeatingTimer> workTimer_;   // until the work has taken long
    StopReason lastStopReason_ = StopReason::user;
    int marks_ = 0;                        // in the current recording
    LostSound lost_;                       // of the current or last recording
    std::exception_ptr interruption_;      // why it broke, or null
    std::unique_ptr<SleepHold> sleepHold_; // held until the recording is on the disk
    std::unique_ptr<PowerObservation> powerObservation_;
};

} // namespace vantoro
