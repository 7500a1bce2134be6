// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_view_model.h"

namespace vantoro {

/// What the recorder tells of by itself comes to the main thread, where there may be no view model
/// any more.
void RecordingViewModel::installCallbacks() {
    const auto toMainThread = [&scheduler = platform_.scheduler,
                               model = QPointer(this)](auto handle) {
        scheduler.runOnMainThread([model, handle] {
            if (model) {
                handle(*model);
            }
        });
    };
    recorder_->setCallbacks({
        .onCaptureInterrupted =
            [toMainThread](const std::exception_ptr&) {
                toMainThread([](RecordingViewModel& model) {
                    model.handleStop(StopReason::captureInterruption);
                });
            },
        .onAudioLevel =
            [toMainThread](AudioLevelSource source, float level) {
                toMainThread([source, level](RecordingViewModel& model) {
                    model.updateAudioLevel(source, level);
                });
            },
        .onSourceCondition =
            [toMainThread](AudioLevelSource source, SourceCondition condition) {
                toMainThread([source, condition](RecordingViewModel& model) {
                    model.updateCondition(source, condition);
                });
            },
        .onSoundLoss =
            [toMainThread](const SoundLoss& loss) {
                toMainThread([loss](RecordingViewModel& model) { model.handleSoundLoss(loss); });
            },
        .onDiskRoom =
            [toMainThread](DiskRoom room) {
                toMainThread([room](RecordingViewModel& model) { model.handleDiskRoom(room); });
            },
        .onRecordingSafe =
            [toMainThread] {
                toMainThread([](RecordingViewModel& model) { model.sleepHold_.reset(); });
            },
    });
}

} // namespace vantoro
