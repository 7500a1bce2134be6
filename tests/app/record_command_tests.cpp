#include "app/record_command.h"

#include <csignal>
#include <functional>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tests/engine/recorder_fixture.h"

namespace vantoro::testing {
namespace {

/// A base, so that the signals are blocked before the recorder starts its thread.
struct BlockedSignals {
    StopSignals signals;
};

class RecordCommandTest : protected BlockedSignals, public RecorderTest {
protected:
    RecordCommand command;
    std::string output;
    std::string errors;

    /// Runs the command; `meanwhile` happens once capture has been started.
    int run(const std::function<void()>& meanwhile) {
        capture.duringStart = meanwhile;
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        const int status = runRecordCommand(command, folder, recorder, signals);
        output = ::testing::internal::GetCapturedStdout();
        errors = ::testing::internal::GetCapturedStderr();
        return status;
    }

    void captureSomething() {
        capture.deliver(bufferAt(0), StreamOutputType::audio);
        capture.deliver(bufferAt(0, 1), StreamOutputType::microphone);
    }
};

TEST_F(RecordCommandTest, signalEndsTheRecordingAndThePathAloneIsPrinted) {
    EXPECT_EQ(run([&] {
                  captureSomething();
                  ::kill(::getpid(), SIGTERM);
              }),
              0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(errors, "");
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.9F, 1.0F}));
}

TEST_F(RecordCommandTest, recordingEndsWhenItsTimeHasPassed) {
    command.seconds = 0.01;
    EXPECT_EQ(run([&] { captureSomething(); }), 0);
    EXPECT_EQ(output, finalFile.string() + "\n");
}

TEST_F(RecordCommandTest, optionsReachTheRecorder) {
    command = {.seconds = 0.01,
               .folder = "/elsewhere",
               .systemAudio = true,
               .microphone = true,
               .microphoneID = "usb-microphone",
               .systemVolume = 0.5F,
               .microphoneVolume = 0.25F};
    EXPECT_EQ(run([&] { captureSomething(); }), 0);
    EXPECT_EQ(output, "/elsewhere/Vantoro-2025-03-01-093015.m4a\n");
    EXPECT_EQ(capture.configuration.microphoneCaptureDeviceID, "usb-microphone");
    EXPECT_EQ(toolkit.exportedGains, (std::vector<float>{0.5F, 0.25F}));
}

TEST_F(RecordCommandTest, failedStartIsItsDescriptionAndStatusOne) {
    screen.allowed = false;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "Screen & System Audio Recording permission is required. Enable Vantoro in "
                      "System Settings, then reopen the app.\n");
}

TEST_F(RecordCommandTest, brokenCaptureSavesWhatThereIsAndSaysWhy) {
    EXPECT_EQ(run([&] {
                  captureSomething();
                  capture.stopByItself(
                      std::make_exception_ptr(std::runtime_error("The microphone is gone.")));
              }),
              0);
    EXPECT_EQ(output, finalFile.string() + "\n");
    EXPECT_EQ(errors, "The microphone is gone.\nAudio capture was interrupted. The captured audio "
                      "was saved successfully.\n");
}

TEST_F(RecordCommandTest, recordingThatNeverBeganSaysWhatBrokeIt) {
    toolkit.writing.startSucceeds = false;
    toolkit.writing.error = "Permission denied";
    EXPECT_EQ(run([&] { captureSomething(); }), 1);
    EXPECT_EQ(errors, "Recording failed: Permission denied\n");
    EXPECT_TRUE(fileSystem.entries.empty());
}

TEST_F(RecordCommandTest, nothingCapturedIsAFailure) {
    command.seconds = 0.01;
    EXPECT_EQ(run({}), 1);
    EXPECT_EQ(errors, "No audio was captured. Check the selected sources and try again.\n");
}

TEST_F(RecordCommandTest, failedSavingSaysThatACheckpointWasKept) {
    command.seconds = 0.01;
    toolkit.exporting.exportError =
        std::make_exception_ptr(std::runtime_error("No space left on device"));
    EXPECT_EQ(run([&] { captureSomething(); }), 1);
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "No space left on device A recoverable recording checkpoint was kept in the "
                      "recording folder.\n");
}

} // namespace
} // namespace vantoro::testing
