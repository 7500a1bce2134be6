// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_view_model.h"

#include "control/transitions.h"

namespace vantoro {

/// Moves the callbacks to the main thread, where the view model may be gone.
void RecordingViewModel::installCallbacks() {
    using Model = RecordingViewModel;
    const auto toMainThread = [&scheduler = platform_.scheduler,
                               model = QPointer(this)](auto handle) {
        scheduler.runOnMainThread([model, handle] {
            if (model) {
                handle(*model);
            }
        });
    };
    const auto progressed = [progressed = platform_.recorderProgressed] {
        if (progressed) {
            progressed();
        }
    };
    recorder_->onCaptureInterrupted = [toMainThread](const std::exception_ptr& cause) {
        toMainThread([cause](Model& model) { model.handleInterruption(cause); });
    };
    recorder_->onAudioLevel = [toMainThread](AudioLevelSource source, float level) {
        toMainThread([source, level](Model& model) { model.updateAudioLevel(source, level); });
    };
    recorder_->onSourceCondition = [toMainThread](auto source, auto condition) {
        toMainThread(
            [source, condition](Model& model) { model.updateCondition(source, condition); });
    };
    recorder_->onSoundLoss = [toMainThread](const SoundLoss& loss) {
        toMainThread([loss](Model& model) { model.handleSoundLoss(loss); });
    };
    recorder_->onTracksNotKept = [toMainThread](const TracksNotKept& failure) {
        toMainThread([failure](Model& model) { model.lost_.add(failure); });
    };
    recorder_->onDiskRoom = [toMainThread](DiskRoom room) {
        toMainThread([room](Model& model) { model.handleDiskRoom(room); });
    };
    recorder_->onRecordingSafe = [toMainThread, progressed] {
        progressed();
        toMainThread([](Model& model) { model.sleepHold_.reset(); });
    };
    recorder_->onExportProgress = [toMainThread, progressed](double fraction) {
        progressed();
        toMainThread(
            [fraction](Model& model) { model.advance(WorkProgress::Work::saving, fraction); });
    };
    recorder_->onSalvageProgress = [toMainThread, progressed](double fraction) {
        progressed();
        toMainThread(
            [fraction](Model& model) { model.advance(WorkProgress::Work::salvage, fraction); });
    };
}

void RecordingViewModel::handleInterruption(const std::exception_ptr& cause) {
    interruption_ = cause;
    handleStop(StopReason::captureInterruption);
}

/// May arrive before the recorder reports that it runs, and after a stop was requested.
void RecordingViewModel::handleDiskRoom(DiskRoom room) {
    if (room.advice == RoomAdvice::end) {
        handleStop(StopReason::diskNearlyFull);
    } else if (isUnderWay(values().state.which())) {
        setErrorMessage(texts_.roomLeft(room.minutesLeft));
    }
}

/// Losses while writing are reported just before the result, so its message includes them.
void RecordingViewModel::handleSoundLoss(const SoundLoss& loss) {
    lost_.add(loss);
    if (isUnderWay(values().state.which())) {
        setErrorMessage(lost_.text(texts_));
    }
}

void RecordingViewModel::updateAudioLevel(AudioLevelSource source, float level) {
    if (values().state.which() == RecordingState::Case::recording) {
        setLevel(source, shownLevel(level));
    }
}

/// May arrive before the recorder reports that it runs: a microphone may be off from the start.
void RecordingViewModel::updateCondition(AudioLevelSource source, SourceCondition condition) {
    if (isUnderWay(values().state.which())) {
        setCondition(source, condition);
    }
}

void RecordingViewModel::beginWork(WorkProgress::Work work) {
    endWork();
    work_.emplace(work);
    workTimer_ = platform_.scheduler.startTimer(unshownWork, [this] {
        platform_.scheduler.runOnMainThread([model = QPointer(this)] {
            if (model && model->work_) {
                model->workTimer_.reset();
                model->setProgress(model->work_->progress());
            }
        });
    });
}

/// Work begins with its first progress: most salvages find nothing. What a salvage reports that a
/// recording has cancelled does not count.
void RecordingViewModel::advance(WorkProgress::Work work, double fraction) {
    const auto state = values().state.which();
    const bool isExpected = work == WorkProgress::Work::saving
                                ? state == RecordingState::Case::processing
                                : !isBusy(state);
    if (!work_ && isExpected) {
        beginWork(work);
    }
    if (!work_ || work_->progress().work != work) {
        return;
    }
    work_->advance(fraction, std::chrono::steady_clock::now());
    if (!workTimer_) {
        setProgress(work_->progress());
    }
}

void RecordingViewModel::endWork() {
    workTimer_.reset();
    work_.reset();
    setProgress(std::nullopt);
}

} // namespace vantoro
