// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

#include "control/ports/recorder.h"
#include "engine/audio_recorder.h"

namespace vantoro {

/// For those who show more of the recorder than the view model does. Called on the recorder's
/// threads; each may be empty.
struct RecorderDetails {
    CaptureInterruptedCallback onCaptureInterrupted; ///< why, before the view model hears of it
    ExportProgress onExportProgress;                 ///< of a stop and of salvage
    std::function<void()> onRecordingSafe;           ///< before the view model hears of it
};

/// The engine's recorder, for the view model to control.
class EngineRecorder final : public Recorder {
public:
    explicit EngineRecorder(const RecorderPlatform& platform, RecorderDetails details = {});

    void setCallbacks(RecorderCallbacks callbacks) override;
    void start(const RecordingOptions& options) override;
    void expectVolumes(float systemVolume, float microphoneVolume) override;
    std::filesystem::path stop(float systemVolume, float microphoneVolume) override;
    bool hasKeptRecording() const override;
    SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                              const std::stop_token& stop) override;

private:
    CaptureInterruptedCallback onInterruptionCause_;
    std::function<void()> onRecordingSafe_;
    AudioRecorder recorder_;
};

} // namespace vantoro
