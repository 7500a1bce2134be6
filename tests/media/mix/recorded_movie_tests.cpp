// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/files/output_place.h"
#include "engine/recording_types.h"
#include "media/codec/aac.h"
#include "media/mix/encoded_segment.h"
#include "media/mix/recorded_movie.h"
#include "media/writing/fragment_muxer.h"
#include "media/writing/movie_writer.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

using ::testing::HasSubstr;

/// A temporary movie, and its mix.
class MovieMix : public ::testing::Test {
protected:
    struct Source {
        TrackFormat settings;
        std::int64_t frames;
        Sound sound;
    };

    void record(const std::vector<Source>& sources) {
        std::vector<TrackFormat> settings;
        std::ranges::transform(sources, std::back_inserter(settings), &Source::settings);
        MovieRecording recording(files, "movie.mov", settings);
        constexpr std::int64_t step = MovieRecording::bufferFrames;
        const std::int64_t longest = std::ranges::max(sources, {}, &Source::frames).frames;
        for (std::int64_t frame = 0; frame < longest; frame += step) {
            for (std::size_t track = 0; track < sources.size(); ++track) {
                const std::int64_t end = std::min(frame + step, sources[track].frames);
                ASSERT_TRUE(recording.append(track, frame, end, sources[track].sound));
            }
        }
        recording.finish();
    }

    void mixAt(const std::vector<float>& volumes, const ExportProgress& progress = {}) {
        OutputPlace place(files, "", "mix");
        toolkit.openRecording("movie.mov")->mix(volumes, "", place.stagingFile(), progress, {});
        place.publish(nullptr);
    }

    std::filesystem::path mixFile() { return folder.put("mix.m4a", files.contentOf("mix.m4a")); }

    TemporaryFolder folder;
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit{files};
};

std::span<const float> middleOf(const std::vector<float>& samples) {
    return std::span(samples).subspan(9600, 48000);
}

TEST_F(MovieMix, isAnM4aFileOfStereoAacAt256Kilobits) {
    record({{systemTrack, 3 * second, tone(440, 0.5F)}});
    mixAt({0.5F});
    const auto sections = probe(mixFile());
    ASSERT_EQ(sections.size(), 2U);
    EXPECT_EQ(sections[1].at("TAG:major_brand"), "M4A ");
    EXPECT_EQ(sections[0].at("codec_name"), "aac");
    EXPECT_EQ(sections[0].at("profile"), "LC");
    EXPECT_EQ(sections[0].at("channels"), "2");
    EXPECT_EQ(sections[0].at("channel_layout"), "stereo");
    EXPECT_EQ(sections[0].at("sample_rate"), "48000");
    EXPECT_EQ(sections[0].at("start_time"), "0.000000");
    EXPECT_EQ(files.audience(), FileAudience::asUserPrefers);
    const auto journal = files.journalOf("mix.m4a");
    EXPECT_EQ(std::vector(journal.end() - 3, journal.end()),
              (std::vector<std::string>{"sync", "close", "name"}));
}

TEST_F(MovieMix, eachTrackHasItsGainWithinATenthOfADecibel) {
    record({{systemTrack, 3 * second, tone(440, 0.4F)},
            {microphoneTrack, 3 * second, tone(1000, 0.4F)}});
    mixAt({0.9F, 0.25F});
    const auto file = mixFile();
    for (int channel = 0; channel < 2; ++channel) {
        const auto samples = decode(file, 0, channel);
        EXPECT_NEAR(levelOf(middleOf(samples), 440), 20 * std::log10(0.4 * 0.9), 0.1);
        EXPECT_NEAR(levelOf(middleOf(samples), 1000), 20 * std::log10(0.4 * 0.25), 0.1);
    }
}

TEST_F(MovieMix, aTrackAtVolumeZeroIsSilent) {
    record({{systemTrack, 3 * second, tone(440, 0.4F)},
            {microphoneTrack, 3 * second, tone(1000, 0.4F)}});
    mixAt({0.0F, 1.0F});
    const auto samples = decode(mixFile(), 0);
    EXPECT_LT(levelOf(middleOf(samples), 440), -80);
    EXPECT_NEAR(levelOf(middleOf(samples), 1000), 20 * std::log10(0.4), 0.1);
}

TEST_F(MovieMix, aSingleMonoTrackIsInBothChannelsAtFullLevel) {
    record({{microphoneTrack, 3 * second, tone(1000, 0.4F)}});
    mixAt({2.0F});
    const auto file = mixFile();
    for (int channel = 0; channel < 2; ++channel) {
        EXPECT_NEAR(levelOf(middleOf(decode(file, 0, channel)), 1000), 20 * std::log10(0.8), 0.1);
    }
}

TEST_F(MovieMix, keepsLeftAndRightApart) {
    {
        MovieRecording recording(files, "movie.mov", {systemTrack});
        std::vector<float> samples;
        for (const Sound& channel : {tone(440, 0.5F), tone(1000, 0.3F)}) {
            for (std::int64_t frame = 0; frame < 2 * second; ++frame) {
                samples.push_back(channel(frame));
            }
        }
        SampleBuffer buffer = SoundBuffer(0, 0, 2, silence()).buffer();
        buffer.frameCount = 2 * second;
        buffer.samples = samples;
        ASSERT_TRUE(recording.track(0).append(buffer));
        recording.finish();
    }
    mixAt({1.0F});
    const auto movie = folder.put("movie.mov", files.contentOf("movie.mov"));
    for (const auto& file : {movie, mixFile()}) {
        const auto left = decode(file, 0, 0);
        const auto right = decode(file, 0, 1);
        EXPECT_NEAR(levelOf(middleOf(left), 440), 20 * std::log10(0.5), 0.1);
        EXPECT_LT(levelOf(middleOf(left), 1000), -80);
        EXPECT_NEAR(levelOf(middleOf(right), 1000), 20 * std::log10(0.3), 0.1);
        EXPECT_LT(levelOf(middleOf(right), 440), -80);
    }
}

TEST_F(MovieMix, theSumIsClippedToFullScale) {
    record({{systemTrack, 3 * second, tone(440, 0.9F)},
            {microphoneTrack, 3 * second, tone(440, 0.9F)}});
    mixAt({4.0F, 4.0F});
    const auto samples = decode(mixFile(), 0);
    // Nearly a square wave: its fundamental is 4/π of full scale. Wrapped samples would spoil that.
    EXPECT_NEAR(levelOf(middleOf(samples), 440), 20 * std::log10(4 / 3.14159), 0.3);
    EXPECT_LT(*std::ranges::max_element(samples), 1.3F);
}

TEST_F(MovieMix, isExactlyAsLongAsTheLongestTrack) {
    for (const std::int64_t frames : {1LL, 1023LL, 1024LL, 1025LL, 48000LL, 50001LL}) {
        for (const std::int64_t other : {frames, frames / 3 + 1}) {
            files.clear();
            record({{systemTrack, other, tone(440, 0.5F)},
                    {microphoneTrack, frames, tone(440, 0.5F)}});
            mixAt({1.0F, 1.0F});
            const auto file = mixFile();
            EXPECT_EQ(probe(file)[0].at("duration_ts"), std::to_string(frames));
            EXPECT_EQ(framesOf(file, 0), frames);
        }
    }
}

TEST_F(MovieMix, everyFrameStaysInItsPlace) {
    const std::vector<std::int64_t> places{3000, 48100, 100'001, 528'300, 600'000};
    record({{systemTrack, 13 * second, clicks(places)},
            {microphoneTrack, 13 * second, clicks({250'000})}});
    mixAt({0.9F, 1.0F});
    const auto samples = decode(mixFile(), 0);
    for (const std::int64_t place : {3000, 48100, 100'001, 250'000, 528'300, 600'000}) {
        EXPECT_LE(std::abs(clickIn(samples, place - 2400, place + 2400) - place), 2);
    }
}

TEST_F(MovieMix, silenceFollowsAShorterTrack) {
    record({{systemTrack, second, tone(440, 0.5F)}, {microphoneTrack, 3 * second, silence()}});
    mixAt({1.0F, 1.0F});
    const auto samples = decode(mixFile(), 0);
    const auto rest = std::span(samples).subspan(static_cast<std::size_t>(second) + 2048);
    EXPECT_LT(std::abs(*std::ranges::max_element(rest, {},
                                                 [](float sample) { return std::abs(sample); })),
              1e-3F);
}

TEST_F(MovieMix, progressNeverFallsAndEndsAtOne) {
    record({{systemTrack, 12 * second, tone(440, 0.5F)}});
    std::vector<double> reports;
    mixAt({0.5F}, [&reports](double fraction) { reports.push_back(fraction); });
    EXPECT_GE(reports.size(), 3U); // the number in between depends on the processors
    EXPECT_TRUE(std::ranges::is_sorted(reports));
    EXPECT_EQ(reports.front(), 0.0);
    EXPECT_EQ(reports.back(), 1.0);
}

TEST_F(MovieMix, reportsAFullDiskInTheSystemsWords) {
    record({{systemTrack, 12 * second, tone(440, 0.5F)}});
    files.setCapacity(files.contentOf("movie.mov").size() + 50'000);
    try {
        mixAt({1.0F});
        ADD_FAILURE();
    } catch (const std::exception& error) {
        EXPECT_THAT(error.what(), HasSubstr("No space left on device"));
    }
}

TEST_F(MovieMix, failsForATrackWithoutSound) {
    media::FragmentMuxer muxer;
    muxer.addTrack(media::makeMixEncoder(ffmpeg::codec()).track());
    muxer.add(0, {.bytes = {0}, .start = -media::primingFrames, .frames = media::primingFrames});
    files.put("movie.mov", muxer.closeFragment(0));
    EXPECT_EQ(toolkit.openRecording("movie.mov")->duration(), zeroTime);
    EXPECT_THROW(mixAt({1.0F}), std::runtime_error);
    EXPECT_FALSE(files.exists("mix.m4a"));
}

TEST_F(MovieMix, requiresAFiniteVolumePerTrack) {
    record({{systemTrack, second, tone(440, 0.5F)}});
    EXPECT_THROW(mixAt({std::numeric_limits<float>::quiet_NaN()}), std::invalid_argument);
    EXPECT_THROW(mixAt({}), std::invalid_argument);
    EXPECT_THROW(mixAt({1.0F, 1.0F}), std::invalid_argument);
}

/// As with a library built without an encoder.
class NoCodec final : public media::AacCodec {
public:
    bool hasEncoder() const noexcept override { return false; }

    std::unique_ptr<media::ChannelEncoder> makeChannelEncoder(int /*bitRate*/) const override {
        throw std::runtime_error("no coder");
    }

    std::unique_ptr<media::AacDecoder>
    makeDecoder(const media::AacTrack& /*track*/) const override {
        throw std::runtime_error("no decoder");
    }
};

TEST_F(MovieMix, failsWithoutACoder) {
    record({{systemTrack, second, tone(440, 0.5F)}});
    const NoCodec none;
    media::RecordedMovie movie(none, files, "movie.mov");
    const auto file = files.create("mix.m4a", FileAudience::asUserPrefers);
    EXPECT_THAT([&] { movie.mix({1.0F}, "", *file, {}, {}); },
                ::testing::Throws<RecordingError>(::testing::Property(
                    &RecordingError::which, RecordingError::Case::exportFailed)));
}

TEST(WriterWithoutACoder, takesNoTrack) {
    MemoryFileSystem files;
    const NoCodec none;
    media::MovieWriter writer(none, files, "movie.mov");
    EXPECT_EQ(writer.addTrack(systemTrack), nullptr);
}

TEST(MovieMixOnDisk, writesAndReadsRealFiles) {
    const TemporaryFolder folder;
    posix::PosixFileSystem files;
    MovieRecording recording(files, folder.path() / "movie.mov");
    ASSERT_TRUE(recording.appendAll(0, 3 * second, tone(440, 0.4F)));
    recording.finish();
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto file = files.create(folder.path() / "mix.m4a", FileAudience::asUserPrefers);
    toolkit.openRecording(recording.location())->mix({1.0F, 1.0F}, "", *file, {}, {});
    const auto samples = decode(folder.path() / "mix.m4a", 0);
    EXPECT_EQ(framesOf(folder.path() / "mix.m4a", 0), 3 * second);
    EXPECT_NEAR(levelOf(middleOf(samples), 440), 20 * std::log10(0.8), 0.1);
}

} // namespace
} // namespace vantoro::testing
