#pragma once

#include "control/ports/recorder.h"
#include "engine/audio_recorder.h"

namespace vantoro {

/// The engine's recorder, for the view model to control.
class EngineRecorder final : public Recorder {
public:
    explicit EngineRecorder(const RecorderPlatform& platform) : recorder_(platform) {}

    void setCallbacks(CaptureInterruptedCallback onCaptureInterrupted,
                      AudioLevelCallback onAudioLevel) override;
    void start(const RecordingOptions& options) override;
    std::filesystem::path stop(float systemVolume, float microphoneVolume) override;
    std::vector<std::filesystem::path>
    recoverIncompleteRecordings(const std::filesystem::path& folder,
                                const std::stop_token& stop) override;

private:
    AudioRecorder recorder_;
};

} // namespace vantoro
