// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <thread>

#include "engine/failure.h"
#include "media/writing/fragment_file.h"
#include "media/writing/movie_writer.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

using ::testing::HasSubstr;

class WriteFailure : public ::testing::Test {
protected:
    /// Records until the writer refuses a buffer; returns the position.
    std::int64_t recordUntilRefused(std::int64_t from) {
        constexpr std::int64_t farEnough = 120 * second;
        std::int64_t frame = from;
        while (frame < farEnough &&
               recording.appendAll(frame, frame + MovieRecording::bufferFrames, sound)) {
            frame += MovieRecording::bufferFrames;
        }
        EXPECT_LT(frame, farEnough);
        return frame;
    }

    std::int64_t framesOnDisk() {
        return framesOf(folder.put("movie.mov", files.contentOf("movie.mov")), 1);
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    MovieRecording recording{files, "movie.mov"};
    Sound sound = tone(440, 0.5F);
};

TEST_F(WriteFailure, theNextAppendReportsAFullDisk) {
    files.setCapacity(100'000);
    recordUntilRefused(0);
    EXPECT_EQ(recording.writer().status(), WriterStatus::failed);
    EXPECT_THAT(whatOf(recording.writer().error()), HasSubstr("No space left on device"));
    EXPECT_TRUE(recording.track(0).isReady());
}

TEST_F(WriteFailure, nothingIsLostWhenTheDiskHasRoomAgainAtTheEnd) {
    files.setCapacity(100'000);
    const std::int64_t recorded = recordUntilRefused(0);
    files.setCapacity(10'000'000);
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
    EXPECT_EQ(recording.writer().error(), nullptr);
    EXPECT_EQ(recording.writer().secondsNotWritten(), 0);
    // The system track may have accepted the buffer that the microphone track refused.
    EXPECT_EQ(framesOnDisk(), recorded);
    EXPECT_EQ(topBoxes(files.contentOf("movie.mov")).back().type, "mfra");
}

TEST_F(WriteFailure, whatWasWrittenBeforeCountsWhenTheDiskStaysFull) {
    files.setCapacity(100'000);
    const std::int64_t recorded = recordUntilRefused(0);
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
    // Truncated to the one whole fragment.
    EXPECT_EQ(topBoxes(files.contentOf("movie.mov")).back().type, "uuid");
    EXPECT_EQ(framesOnDisk(), 48128);
    EXPECT_NEAR(recording.writer().secondsNotWritten(), static_cast<double>(recorded) / second - 1,
                0.05);
    EXPECT_THAT(whatOf(recording.writer().error()), HasSubstr("No space left on device"));
    EXPECT_EQ(files.journalOf("movie.mov").back(), "close");
}

TEST_F(WriteFailure, finishingWithoutAWholeFragmentFails) {
    files.setCapacity(1'000);
    recordUntilRefused(0);
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::failed);
    EXPECT_THAT(whatOf(recording.writer().error()), HasSubstr("No space left on device"));
    EXPECT_TRUE(files.contentOf("movie.mov").empty());
}

TEST_F(WriteFailure, aFailedSyncIsAFailedWrite) {
    files.syncFails = true;
    const std::int64_t recorded = recordUntilRefused(0);
    EXPECT_THAT(whatOf(recording.writer().error()), HasSubstr("Input/output error"));
    files.syncFails = false;
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
    EXPECT_EQ(framesOnDisk(), recorded);
}

TEST_F(WriteFailure, anUnreachableFileAtTheEndIsAFailure) {
    ASSERT_TRUE(recording.appendAll(0, 2 * second, sound));
    files.isUnreachable = true;
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::failed);
    EXPECT_THAT(whatOf(recording.writer().error()), HasSubstr("Permission denied"));
}

TEST_F(WriteFailure, aStuckDiskLosesNoFrameAndBlocksNoCaller) {
    files.setStuck(true);
    ASSERT_TRUE(recording.appendAll(0, 2 * second, sound));
    ASSERT_TRUE(files.waitUntilStuck());
    // Takes ten more seconds while no byte reaches the disk.
    for (std::int64_t frame = 2 * second; frame < 12 * second; frame += second) {
        ASSERT_TRUE(recording.track(0).isReady());
        ASSERT_TRUE(recording.appendAll(frame, frame + second, sound));
    }
    EXPECT_TRUE(files.contentOf("movie.mov").empty());
    files.setStuck(false);
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
    EXPECT_EQ(framesOnDisk(), 12 * second);
}

TEST_F(WriteFailure, appendAfterTheEndFails) {
    ASSERT_TRUE(recording.appendAll(0, second, sound));
    recording.track(1).end();
    EXPECT_FALSE(recording.append(1, second, 2 * second, sound));
    recording.finish();
    EXPECT_FALSE(recording.append(0, second, 2 * second, sound));
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
}

TEST_F(WriteFailure, noSoundAtAllIsAFailure) {
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::failed);
    EXPECT_NE(recording.writer().error(), nullptr);
}

TEST(WriterStart, failsWithTheSystemsTextWhenTheFileCannotBeCreated) {
    MemoryFileSystem files;
    files.put("movie.mov", {});
    ffmpeg::FfmpegToolkit toolkit(files);
    EXPECT_THAT([&] { toolkit.makeWriter("movie.mov", {}, {}); },
                ::testing::ThrowsMessage<std::system_error>(HasSubstr("File exists")));
}

TEST(WriterStart, finishingAWriterThatNeverStartedFails) {
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto writer = toolkit.makeWriter("movie.mov", {}, {});
    int completions = 0;
    writer->finish([&completions] { ++completions; });
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(writer->status(), WriterStatus::failed);
}

TEST(WriterBacklog, tracksAreNotReadyWhileTooMuchWaitsForTheDisk) {
    MemoryFileSystem files;
    media::MovieWriter writer(ffmpeg::codec(), files, "movie.mov", {}, {}, {}, 10'000);
    RecordingTrack& track = *writer.addTrack(microphoneTrack);
    ASSERT_TRUE(writer.start(SoundBuffer::sessionStart));
    files.setStuck(true);
    EXPECT_TRUE(track.isReady());
    ASSERT_TRUE(track.append(SoundBuffer(0, 12 * second, 1, tone(440, 0.5F)).buffer()));
    EXPECT_FALSE(track.isReady());
    files.setStuck(false);
    // The file thread updates the backlog shortly after the sync.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!track.isReady() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_TRUE(track.isReady());
}

TEST(WriterProgress, isReportedForEachFragmentOnTheDisk) {
    MemoryFileSystem files;
    std::vector<std::pair<double, std::uint64_t>> told;
    {
        ffmpeg::FfmpegToolkit toolkit(files);
        const auto writer =
            toolkit.makeWriter("movie.mov", {}, [&](MediaTime recorded, std::uint64_t waiting) {
                EXPECT_EQ(files.journalOf("movie.mov").back(), "sync");
                told.emplace_back(recorded.seconds(), waiting);
            });
        RecordingTrack& track = *writer->addTrack(microphoneTrack);
        ASSERT_TRUE(writer->start(SoundBuffer::sessionStart));
        files.setStuck(true);
        ASSERT_TRUE(track.append(SoundBuffer(0, 12 * second, 1, tone(440, 0.5F)).buffer()));
        ASSERT_TRUE(files.waitUntilStuck());
        files.setStuck(false);
    }
    ASSERT_EQ(told.size(), 2U);
    // When the first second is on disk, ten more wait.
    EXPECT_NEAR(told[0].first, 11, 0.03);
    EXPECT_GT(told[0].second, 20'000U);
    EXPECT_NEAR(told[1].first, 11, 0.03);
    EXPECT_EQ(told[1].second, 0U);
}

TEST(FragmentFile, countsTheWaitingBytes) {
    MemoryFileSystem files;
    files.setStuck(true);
    media::FragmentFile file(
        files.create("movie.mov", FileAudience::userOnly), [](const std::exception_ptr&) {},
        [](std::size_t) {});
    file.append(std::vector<std::byte>(1000), 0);
    file.append(std::vector<std::byte>(500), 0);
    ASSERT_TRUE(files.waitUntilStuck());
    EXPECT_EQ(file.backlog(), 1500U);
    files.setStuck(false);
    ASSERT_TRUE(files.waitForSyncedSize("movie.mov", 1500));
}

} // namespace
} // namespace vantoro::testing
