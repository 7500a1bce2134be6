#include "control/engine_recorder.h"

#include <utility>

namespace vantoro {

void EngineRecorder::setCallbacks(CaptureInterruptedCallback onCaptureInterrupted,
                                  AudioLevelCallback onAudioLevel) {
    recorder_.onCaptureInterrupted = std::move(onCaptureInterrupted);
    recorder_.onAudioLevel = std::move(onAudioLevel);
}

void EngineRecorder::start(const RecordingOptions& options) {
    recorder_.start(options);
}

std::filesystem::path EngineRecorder::stop(float systemVolume, float microphoneVolume) {
    return recorder_.stop(systemVolume, microphoneVolume);
}

std::vector<std::filesystem::path>
EngineRecorder::recoverIncompleteRecordings(const std::filesystem::path& folder,
                                            const std::stop_token& stop) {
    return recorder_.recoverIncompleteRecordings(folder, stop);
}

} // namespace vantoro
