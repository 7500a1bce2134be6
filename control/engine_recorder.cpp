// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/engine_recorder.h"

#include <utility>

namespace vantoro {

EngineRecorder::EngineRecorder(const RecorderPlatform& platform, RecorderDetails details)
    : onInterruptionCause_(std::move(details.onCaptureInterrupted)),
      onRecordingSafe_(std::move(details.onRecordingSafe)),
      recorder_(platform) {
    recorder_.onExportProgress = std::move(details.onExportProgress);
}

void EngineRecorder::setCallbacks(RecorderCallbacks callbacks) {
    recorder_.onCaptureInterrupted =
        [this, toViewModel = std::move(callbacks.onCaptureInterrupted)](std::exception_ptr error) {
            if (onInterruptionCause_) {
                onInterruptionCause_(error);
            }
            toViewModel(std::move(error));
        };
    recorder_.onAudioLevel = std::move(callbacks.onAudioLevel);
    recorder_.onSourceCondition = std::move(callbacks.onSourceCondition);
    recorder_.onSoundLoss = std::move(callbacks.onSoundLoss);
    recorder_.onDiskRoom = std::move(callbacks.onDiskRoom);
    recorder_.onRecordingSafe = [this, toViewModel = std::move(callbacks.onRecordingSafe)] {
        if (onRecordingSafe_) {
            onRecordingSafe_();
        }
        toViewModel();
    };
}

void EngineRecorder::start(const RecordingOptions& options) {
    recorder_.start(options);
}

void EngineRecorder::expectVolumes(float systemVolume, float microphoneVolume) {
    recorder_.expectVolumes(systemVolume, microphoneVolume);
}

std::filesystem::path EngineRecorder::stop(float systemVolume, float microphoneVolume) {
    return recorder_.stop(systemVolume, microphoneVolume);
}

bool EngineRecorder::hasKeptRecording() const {
    return recorder_.hasKeptRecording();
}

SalvageResult EngineRecorder::recoverIncompleteRecordings(const std::filesystem::path& folder,
                                                          const std::stop_token& stop) {
    return recorder_.recoverIncompleteRecordings(folder, stop);
}

} // namespace vantoro
