#include "l10n/error_description.h"

namespace vantoro {

std::string errorDescription(const RecordingError& error) {
    using enum RecordingError::Case;
    switch (error.which()) {
    case writerFailed:
        return "Recording failed: " + error.message();
    case noAudioSource:
        return "Turn on System Audio or Microphone before recording.";
    case screenPermissionDenied:
        return "Screen & System Audio Recording permission is required. Enable Vantoro in System "
               "Settings, then reopen the app.";
    case microphonePermissionDenied:
        return "Microphone permission is required. Enable Vantoro in System Settings and try "
               "again.";
    case noDisplayAvailable:
        return "Vantoro could not find an available display to capture.";
    case writerSetupFailed:
        return "Vantoro could not prepare the audio file.";
    case noAudioCaptured:
        return "No audio was captured. Check the selected sources and try again.";
    case exportFailed:
        return "Vantoro could not create the final M4A file.";
    }
    return {};
}

std::string errorDescription(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const RecordingError& recordingError) {
        return errorDescription(recordingError);
    } catch (const std::exception& other) {
        return other.what();
    }
}

} // namespace vantoro
