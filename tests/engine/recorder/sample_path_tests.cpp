// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/sample_path.h"

#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "tests/engine/recorder/recorder_fixture.h"

namespace vantoro::testing {
namespace {

using enum AudioLevelSource;

/// The path by itself, on the test's thread.
class SamplePathTest : public ::testing::Test {
protected:
    CallLog log;
    MemoryFileSystem fileSystem{log};
    FakeMediaToolkit toolkit{log, fileSystem};
    FakeClock clock;
    std::vector<std::string> interruptions;
    int levels = 0;
    AudioLevelCallback onLevel = [this](AudioLevelSource, float) { ++levels; };
    CaptureInterruptedCallback onInterrupted = [this](const std::exception_ptr& error) {
        interruptions.push_back(messageOf(error));
    };
    std::vector<SourceCondition> conditions;
    SourceConditionCallback onCondition = [this](AudioLevelSource, SourceCondition condition) {
        conditions.push_back(condition);
    };
    SamplePath path{clock, onLevel, onCondition, onInterrupted};

    void SetUp() override {
        auto writer = toolkit.makeWriter("/recordings/x.partial.mov", {}, {});
        auto* const system = writer->addTrack({.channels = 2});
        auto* const microphoneInput = writer->addTrack({.channels = 1});
        path.arm(std::move(writer), system, microphoneInput);
    }

    std::vector<std::string> written() const { return log.startingWith("append"); }
};

TEST_F(SamplePathTest, firstBufferOfEitherSourceStartsTheFileAndIsWritten) {
    path.append(bufferAt(500, 1), microphone);
    EXPECT_TRUE(log.contains("start 500"));
    EXPECT_EQ(written(), std::vector<std::string>{"append microphone 500"});
    EXPECT_TRUE(path.hasStartedWriting());
}

TEST_F(SamplePathTest, bufferFromBeforeTheStartIsDroppedAndTheNextOneWritten) {
    path.append(bufferAt(500, 1), microphone);
    path.append(bufferAt(499), systemAudio);
    path.append(bufferAt(500), systemAudio);
    path.append(bufferAt(756), systemAudio);
    EXPECT_EQ(written(), (std::vector<std::string>{"append microphone 500", "append system 500",
                                                   "append system 756"}));
}

TEST_F(SamplePathTest, bufferWithoutATimeIsMeteredButNeverWritten) {
    auto buffer = bufferAt(0);
    buffer.presentationTime = {};
    path.append(buffer, systemAudio);
    EXPECT_EQ(levels, 1);
    EXPECT_FALSE(path.hasStartedWriting());
    EXPECT_TRUE(log.startingWith("start ").empty());
    path.append(bufferAt(10, 1), microphone);
    path.append(buffer, systemAudio);
    EXPECT_EQ(written().size(), 1U);
}

TEST_F(SamplePathTest, emptyOrUnreadyBufferIsNeitherMeteredNorWritten) {
    auto buffer = bufferAt(0);
    buffer.dataIsReady = false;
    path.append(buffer, systemAudio);
    buffer = bufferAt(0);
    buffer.frameCount = 0;
    path.append(buffer, systemAudio);
    EXPECT_EQ(levels, 0);
    EXPECT_TRUE(log.startingWith("start ").empty());
}

TEST_F(SamplePathTest, bufferOfASourceWithoutATrackIsDropped) {
    auto writer = toolkit.makeWriter("/recordings/y.partial.mov", {}, {});
    auto* const microphoneInput = writer->addTrack({.channels = 1});
    path.arm(std::move(writer), nullptr, microphoneInput);
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(levels, 0);
    EXPECT_FALSE(path.hasStartedWriting());
}

TEST_F(SamplePathTest, levelsFlowBeforeTheFileHasStarted) {
    toolkit.writing.startSucceeds = false;
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(levels, 1);
}

TEST_F(SamplePathTest, bufferThatTheInputIsNotReadyForIsDroppedSilently) {
    path.append(bufferAt(0), systemAudio);
    toolkit.writing.ready = false;
    path.append(bufferAt(256), systemAudio);
    toolkit.writing.ready = true;
    path.append(bufferAt(512), systemAudio);
    EXPECT_EQ(written(), (std::vector<std::string>{"append system 0", "append system 512"}));
    EXPECT_TRUE(interruptions.empty());
}

TEST_F(SamplePathTest, writerThatCannotStartIsReportedOnceAndEverythingIsDroppedAfterwards) {
    toolkit.writing.startSucceeds = false;
    path.append(bufferAt(0), systemAudio);
    path.append(bufferAt(256), systemAudio);
    EXPECT_EQ(interruptions,
              std::vector<std::string>{"writerFailed: Unable to start the file writer."});
    EXPECT_FALSE(path.hasStartedWriting());
    EXPECT_TRUE(written().empty());
}

TEST_F(SamplePathTest, writerThatCannotStartIsReportedWithItsOwnError) {
    toolkit.writing.startSucceeds = false;
    toolkit.writing.error = "Permission denied";
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(interruptions, std::vector<std::string>{"writerFailed: Permission denied"});
}

TEST_F(SamplePathTest, pathWithoutAWriterReportsThatItCannotStart) {
    auto writer = toolkit.makeWriter("/recordings/y.partial.mov", {}, {});
    auto* const system = writer->addTrack({.channels = 2});
    path.arm(nullptr, system, nullptr);
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(interruptions,
              std::vector<std::string>{"writerFailed: Unable to start the file writer."});
}

TEST_F(SamplePathTest, failedAppendIsReportedAndStopsTheWriting) {
    path.append(bufferAt(0), systemAudio);
    toolkit.writing.appendSucceeds = false;
    path.append(bufferAt(256), systemAudio);
    path.append(bufferAt(512), systemAudio);
    EXPECT_EQ(interruptions,
              std::vector<std::string>{"writerFailed: Unable to write an audio sample."});
    EXPECT_EQ(written().size(), 2U);
    EXPECT_EQ(levels, 1) << "the later buffers lie within the interval or are dropped";
}

TEST_F(SamplePathTest, failedAppendIsReportedWithTheWritersError) {
    toolkit.writing.appendSucceeds = false;
    toolkit.writing.error = "No space left on device";
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(interruptions, std::vector<std::string>{"writerFailed: No space left on device"});
}

TEST_F(SamplePathTest, nothingIsMeteredAfterAnInterruption) {
    path.interrupt(std::make_exception_ptr(std::runtime_error("gone")));
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(levels, 0);
    EXPECT_EQ(interruptions, std::vector<std::string>{"gone"});
}

TEST_F(SamplePathTest, silentlyRecordedErrorStopsWritingWithoutAReport) {
    path.recordErrorIfNone(std::make_exception_ptr(std::runtime_error("late")));
    path.append(bufferAt(0), systemAudio);
    EXPECT_TRUE(interruptions.empty());
    EXPECT_TRUE(log.startingWith("start ").empty());
}

TEST_F(SamplePathTest, aSingleFrameIsWritten) {
    path.append(bufferAt(0, 2, 1), systemAudio);
    EXPECT_EQ(written(), std::vector<std::string>{"append system 0"});
}

TEST_F(SamplePathTest, nothingIsAppendedAfterTheRecording) {
    path.append(bufferAt(0), systemAudio);
    path.disarm();
    path.append(bufferAt(256), systemAudio);
    path.append(bufferAt(256, 1), microphone);
    EXPECT_EQ(written().size(), 1U);
    EXPECT_EQ(levels, 1);
    EXPECT_TRUE(interruptions.empty());
}

TEST_F(SamplePathTest, failureOfARecordingDoesNotConcernTheNextOne) {
    path.interrupt(std::make_exception_ptr(std::runtime_error("gone")));
    SetUp();
    path.append(bufferAt(0), systemAudio);
    EXPECT_EQ(written(), std::vector<std::string>{"append system 0"});
}

TEST_F(SamplePathTest, finishMarksTheSystemsTrackThenTheMicrophonesThenFinishes) {
    path.append(bufferAt(0), systemAudio);
    path.finish([](const std::exception_ptr&) {});
    path.disarm();
    const auto calls = log.calls();
    const std::vector<std::string> end(calls.end() - 3, calls.end());
    EXPECT_EQ(end, (std::vector<std::string>{"end system", "end microphone", "finish"}));
}

TEST_F(SamplePathTest, silentOrMutedSourceIsReportedAndForgottenWithTheRecording) {
    for (std::int64_t frame = 0; frame <= 480000; frame += 4096) {
        path.append(bufferAt(frame, 1, 4096, 0), microphone);
    }
    EXPECT_EQ(conditions, std::vector{SourceCondition::silent});
    path.setObstacle(AudioLevelSource::microphone, SourceCondition::muted);
    EXPECT_EQ(conditions.back(), SourceCondition::muted);
    path.disarm();
    path.setObstacle(AudioLevelSource::microphone, SourceCondition::muted);
    EXPECT_EQ(conditions.size(), 3U);
}

} // namespace
} // namespace vantoro::testing
