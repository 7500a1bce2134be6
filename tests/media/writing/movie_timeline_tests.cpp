// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

/// A movie being written, whose tracks an independent program decodes.
class MovieTimeline : public ::testing::Test {
protected:
    /// The track's sound; checks its length.
    std::vector<float> decodeTrack(int track, std::int64_t frames) {
        recording.finish();
        EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
        const auto file = folder.put("movie.mov", files.contentOf("movie.mov"));
        EXPECT_EQ(framesOf(file, track), frames);
        auto samples = decode(file, track);
        EXPECT_GE(samples.size(), static_cast<std::size_t>(frames));
        return samples;
    }

    void expectClick(const std::vector<float>& samples, std::int64_t frame) {
        const std::int64_t found =
            clickIn(samples, std::max<std::int64_t>(frame - 4800, 0), frame + 4800);
        EXPECT_LE(std::abs(found - frame), 2);
        EXPECT_GT(std::abs(samples[static_cast<std::size_t>(found)]), 0.4F) << "at " << frame;
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    MovieRecording recording{files, "movie.mov"};
};

TEST_F(MovieTimeline, everyFrameIsAtItsTimeStamp) {
    const std::vector<std::int64_t> places{5000, 47990, 48130, 60001, 527900, 528500, 700001};
    ASSERT_TRUE(recording.appendAll(0, 16 * second, clicks(places)));
    recording.finish();
    const auto file = folder.put("movie.mov", files.contentOf("movie.mov"));
    for (int track = 0; track < 2; ++track) {
        const auto samples = decode(file, track);
        EXPECT_EQ(framesOf(file, track), 16 * second);
        for (const std::int64_t place : {5000, 60001, 700001}) {
            expectClick(samples, place);
        }
        // Within one packet of the fragments' borders.
        EXPECT_LE(std::abs(clickIn(samples, 47900, 48060) - 47990), 2);
        EXPECT_LE(std::abs(clickIn(samples, 48060, 48200) - 48130), 2);
        EXPECT_LE(std::abs(clickIn(samples, 527800, 528000) - 527900), 2);
        EXPECT_LE(std::abs(clickIn(samples, 528400, 528600) - 528500), 2);
    }
}

TEST_F(MovieTimeline, aTrackThatStartsLateBeginsWithSilence) {
    ASSERT_TRUE(recording.append(0, 0, second / 2, silence()));
    ASSERT_TRUE(recording.append(1, 12345, 2 * second, clicks({30000})));
    ASSERT_TRUE(recording.append(0, second / 2, 2 * second, clicks({30000})));
    const auto samples = decodeTrack(1, 2 * second);
    expectClick(samples, 30000);
}

TEST_F(MovieTimeline, aGapIsFilledWithExactlyThatMuchSilence) {
    ASSERT_TRUE(recording.append(1, 0, 20000, clicks({10000})));
    ASSERT_TRUE(recording.append(1, 33333, 90000, clicks({40000})));
    ASSERT_TRUE(recording.append(0, 0, 90000, silence()));
    const auto samples = decodeTrack(1, 90000);
    expectClick(samples, 10000);
    expectClick(samples, 40000);
}

TEST_F(MovieTimeline, anOverlapIsDropped) {
    ASSERT_TRUE(recording.append(1, 0, 20000, clicks({10000})));
    ASSERT_TRUE(recording.append(1, 14000, 90000, clicks({40000})));
    ASSERT_TRUE(recording.append(0, 0, 90000, silence()));
    const auto samples = decodeTrack(1, 90000);
    expectClick(samples, 10000);
    expectClick(samples, 40000);
}

TEST_F(MovieTimeline, aSourceThatStopsIsFilledAndDelaysNoFragment) {
    ASSERT_TRUE(recording.append(1, 0, 3 * second, clicks({second})));
    ASSERT_TRUE(recording.append(0, 0, 14 * second, silence()));
    // Two fragments are due, though the microphone has no sound for the second.
    ASSERT_TRUE(files.waitForSyncs("movie.mov", 2));
    ASSERT_TRUE(recording.append(1, 15 * second, 18 * second, clicks({16 * second})));
    ASSERT_TRUE(recording.append(0, 14 * second, 18 * second, silence()));
    const auto samples = decodeTrack(1, 18 * second);
    expectClick(samples, second);
    expectClick(samples, 16 * second);
    EXPECT_EQ(topBoxes(files.contentOf("movie.mov")).size(), 2U + (3 * 3) + 1);
}

TEST_F(MovieTimeline, aSourceThatNeverDeliversIsSilent) {
    ASSERT_TRUE(recording.append(0, 0, second / 2, tone(440, 0.5F)));
    EXPECT_THAT(decodeTrack(1, second / 2), ::testing::Each(0.0F));
}

TEST_F(MovieTimeline, buffersOfAnyLengthMakeOneUnbrokenTrack) {
    std::int64_t frame = 0;
    for (std::int64_t length = 1; frame < 2 * second; length = (length * 7 % 3001) + 1) {
        ASSERT_TRUE(recording.append(0, frame, frame + length, tone(1000, 0.5F)));
        ASSERT_TRUE(recording.append(1, frame, frame + length, tone(1000, 0.5F)));
        frame += length;
    }
    const auto samples = decodeTrack(0, frame);
    EXPECT_NEAR(levelOf(std::span(samples).subspan(4800, 48000), 1000), -6.02, 0.05);
}

class ToneLevel : public ::testing::TestWithParam<double> {};

TEST_P(ToneLevel, isTheSameInTheFileUpToFullScale) {
    const TemporaryFolder folder;
    for (const float amplitude : {0.001F, 0.1F, 0.5F, 0.9F, 1.0F}) {
        const auto file =
            folder.put("movie.mov", recordMovie(2 * second, tone(GetParam(), amplitude)));
        for (int track = 0; track < 2; ++track) {
            const auto samples = decode(file, track);
            EXPECT_NEAR(levelOf(std::span(samples).subspan(9600, 48000), GetParam()),
                        20 * std::log10(amplitude), 0.1)
                << amplitude;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Frequencies, ToneLevel, ::testing::Values(100.0, 440.0, 3000.0, 8000.0));

TEST_F(MovieTimeline, nonFiniteSamplesDoNotSpoilOthers) {
    const Sound spoilt = [](std::int64_t frame) {
        return frame % 25000 == 0 ? std::numeric_limits<float>::quiet_NaN()
                                  : tone(1000, 0.5F)(frame);
    };
    ASSERT_TRUE(recording.appendAll(0, 2 * second, spoilt));
    const auto samples = decodeTrack(0, 2 * second);
    EXPECT_NEAR(levelOf(std::span(samples).subspan(4800, 48000), 1000), -6.02, 0.1);
}

TEST_F(MovieTimeline, aBufferThatDoesNotFitItsTrackIsAFailure) {
    const SoundBuffer stereo(0, 480, 2, silence());
    EXPECT_FALSE(recording.track(1).append(stereo.buffer()));
    EXPECT_EQ(recording.writer().status(), WriterStatus::failed);
    EXPECT_NE(recording.writer().error(), nullptr);
}

TEST_F(MovieTimeline, anImpossibleTimeStampIsAFailure) {
    constexpr std::int64_t threeHours = 3LL * 3600 * second;
    ASSERT_TRUE(recording.appendAll(0, second, silence()));
    EXPECT_FALSE(recording.append(0, threeHours, threeHours + 480, silence()));
    EXPECT_EQ(recording.writer().status(), WriterStatus::failed);
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
}

} // namespace
} // namespace vantoro::testing
