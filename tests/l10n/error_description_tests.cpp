#include "l10n/error_description.h"

#include <stdexcept>
#include <utility>

#include <gtest/gtest.h>

namespace vantoro {
namespace {

using enum RecordingError::Case;

TEST(ErrorDescription, everyCaseHasItsText) {
    const std::pair<RecordingError::Case, const char*> table[] = {
        {noAudioSource, "Turn on System Audio or Microphone before recording."},
        {screenPermissionDenied, "Screen & System Audio Recording permission is required. Enable "
                                 "Vantoro in System Settings, then reopen the app."},
        {microphonePermissionDenied,
         "Microphone permission is required. Enable Vantoro in System Settings and try again."},
        {noDisplayAvailable, "Vantoro could not find an available display to capture."},
        {writerSetupFailed, "Vantoro could not prepare the audio file."},
        {noAudioCaptured, "No audio was captured. Check the selected sources and try again."},
        {exportFailed, "Vantoro could not create the final M4A file."},
    };
    for (const auto& [which, text] : table) {
        EXPECT_EQ(errorDescription(RecordingError(which)), text);
    }
}

TEST(ErrorDescription, writerFailureIsAPrefixAndItsMessage) {
    EXPECT_EQ(errorDescription(RecordingError::writerFailed("No space left on device")),
              "Recording failed: No space left on device");
    EXPECT_EQ(errorDescription(RecordingError::writerFailed("")), "Recording failed: ");
}

TEST(ErrorDescription, errorOfThePlatformIsItsOwnText) {
    EXPECT_EQ(errorDescription(std::make_exception_ptr(std::runtime_error("Permission denied"))),
              "Permission denied");
    EXPECT_EQ(errorDescription(std::make_exception_ptr(RecordingError(exportFailed))),
              "Vantoro could not create the final M4A file.");
}

} // namespace
} // namespace vantoro
