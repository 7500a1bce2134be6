// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/posix/posix_file_system.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/memory_file_system.h"
#include "tests/media/support/movie_recording.h"

namespace vantoro {

namespace {

using testing::HasSubstr;

/// A temporary movie, and its mix.
class MixingExport : public testing::Test {
protected:
    struct Source {
        AudioTrackSettings settings;
        std::int64_t frames;
        Sound sound;
    };

    void record(const std::vector<Source>& sources) {
        std::vector<AudioTrackSettings> settings;
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

    /// Lays all tracks of the movie side by side at these volumes.
    void compose(const std::vector<float>& volumes) {
        const auto tracks = toolkit.openAsset("movie.mov")->audioTracks();
        ASSERT_EQ(tracks.size(), volumes.size());
        for (std::size_t index = 0; index < tracks.size(); ++index) {
            CompositionTrack* const track = composition->addAudioTrack();
            track->insert(tracks[index]->timeRange(), tracks[index], zeroTime);
            mix.push_back({.track = track, .volume = volumes[index]});
        }
    }

    void exportMix(const ExportProgress& progress = {}) {
        const auto session = toolkit.makeExportSession(*composition);
        ASSERT_NE(session, nullptr);
        session->setAudioMix(mix);
        OutputPlace place(files, "", "mix");
        session->exportTo(place.stagingFile(), progress, {});
        place.publish(nullptr);
    }

    std::filesystem::path mixFile() { return folder.put("mix.m4a", files.contentOf("mix.m4a")); }

    TemporaryFolder folder;
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit{files};
    std::unique_ptr<Composition> composition = toolkit.makeComposition();
    AudioMix mix;
};

std::span<const float> middleOf(const std::vector<float>& samples) {
    return std::span(samples).subspan(9600, 48000);
}

TEST_F(MixingExport, isAnM4aFileOfStereoAacAt256Kilobits) {
    record({{systemTrack, 3 * second, tone(440, 0.5F)}});
    compose({0.5F});
    exportMix();
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

TEST_F(MixingExport, eachTrackHasItsGainWithinATenthOfADecibel) {
    record({{systemTrack, 3 * second, tone(440, 0.4F)},
            {microphoneTrack, 3 * second, tone(1000, 0.4F)}});
    compose({0.9F, 0.25F});
    exportMix();
    const auto file = mixFile();
    for (int channel = 0; channel < 2; ++channel) {
        const auto samples = decode(file, 0, channel);
        EXPECT_NEAR(levelOf(middleOf(samples), 440), 20 * std::log10(0.4 * 0.9), 0.1);
        EXPECT_NEAR(levelOf(middleOf(samples), 1000), 20 * std::log10(0.4 * 0.25), 0.1);
    }
}

TEST_F(MixingExport, aSilencedTrackIsNotHeard) {
    record({{systemTrack, 3 * second, tone(440, 0.4F)},
            {microphoneTrack, 3 * second, tone(1000, 0.4F)}});
    compose({0.0F, 1.0F});
    exportMix();
    const auto samples = decode(mixFile(), 0);
    EXPECT_LT(levelOf(middleOf(samples), 440), -80);
    EXPECT_NEAR(levelOf(middleOf(samples), 1000), 20 * std::log10(0.4), 0.1);
}

TEST_F(MixingExport, aSingleMonoTrackIsInBothChannelsAtFullLevel) {
    record({{microphoneTrack, 3 * second, tone(1000, 0.4F)}});
    compose({2.0F});
    exportMix();
    const auto file = mixFile();
    for (int channel = 0; channel < 2; ++channel) {
        EXPECT_NEAR(levelOf(middleOf(decode(file, 0, channel)), 1000), 20 * std::log10(0.8), 0.1);
    }
}

TEST_F(MixingExport, leftStaysLeftAndRightStaysRight) {
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
        buffer.samples = std::span<const float>(samples);
        ASSERT_TRUE(recording.input(0).append(buffer));
        recording.finish();
    }
    compose({1.0F});
    exportMix();
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

TEST_F(MixingExport, theSumIsLimitedToFullScale) {
    record({{systemTrack, 3 * second, tone(440, 0.9F)},
            {microphoneTrack, 3 * second, tone(440, 0.9F)}});
    compose({4.0F, 4.0F});
    exportMix();
    const auto samples = decode(mixFile(), 0);
    // Nearly a square wave: its fundamental is 4/π of full scale. Wrapped samples would spoil that.
    EXPECT_NEAR(levelOf(middleOf(samples), 440), 20 * std::log10(4 / 3.14159), 0.3);
    EXPECT_LT(*std::ranges::max_element(samples), 1.3F);
}

TEST_F(MixingExport, isAsLongAsTheLongestTrackToTheSample) {
    for (const std::int64_t frames : {1LL, 1023LL, 1024LL, 1025LL, 48000LL, 50001LL}) {
        for (const std::int64_t other : {frames, frames / 3 + 1}) {
            files.clear();
            record({{systemTrack, other, tone(440, 0.5F)},
                    {microphoneTrack, frames, tone(440, 0.5F)}});
            composition = toolkit.makeComposition();
            mix.clear();
            compose({1.0F, 1.0F});
            exportMix();
            const auto file = mixFile();
            EXPECT_EQ(probe(file)[0].at("duration_ts"), std::to_string(frames));
            EXPECT_EQ(framesOf(file, 0), frames);
        }
    }
}

TEST_F(MixingExport, everyFrameStaysInItsPlace) {
    const std::vector<std::int64_t> places{3000, 48100, 100'001, 528'300, 600'000};
    record({{systemTrack, 13 * second, clicks(places)},
            {microphoneTrack, 13 * second, clicks({250'000})}});
    compose({0.9F, 1.0F});
    exportMix();
    const auto samples = decode(mixFile(), 0);
    for (const std::int64_t place : {3000, 48100, 100'001, 250'000, 528'300, 600'000}) {
        EXPECT_LE(std::abs(clickIn(samples, place - 2400, place + 2400) - place), 2);
    }
}

TEST_F(MixingExport, aRangeOfATrackBeginsAtItsStart) {
    record({{systemTrack, 13 * second, clicks({600'000})}});
    const auto tracks = toolkit.openAsset("movie.mov")->audioTracks();
    composition->addAudioTrack()->insert({.start = {531'441, 48000}, .duration = {80'000, 48000}},
                                         tracks[0], zeroTime);
    exportMix();
    const auto samples = decode(mixFile(), 0);
    EXPECT_EQ(framesOf(folder.path() / "mix.m4a", 0), 80'000);
    EXPECT_LE(std::abs(clickIn(samples, 60'000, 80'000) - (600'000 - 531'441)), 2);
}

TEST_F(MixingExport, silenceFollowsAShorterTrack) {
    record({{systemTrack, second, tone(440, 0.5F)}, {microphoneTrack, 3 * second, silence()}});
    compose({1.0F, 1.0F});
    exportMix();
    const auto samples = decode(mixFile(), 0);
    const auto rest = std::span(samples).subspan(static_cast<std::size_t>(second) + 2048);
    EXPECT_LT(std::abs(*std::ranges::max_element(rest, {},
                                                 [](float sample) { return std::abs(sample); })),
              1e-3F);
}

TEST_F(MixingExport, progressNeverFallsAndEndsAtOne) {
    record({{systemTrack, 12 * second, tone(440, 0.5F)}});
    compose({0.5F});
    std::vector<double> reports;
    exportMix([&reports](double fraction) { reports.push_back(fraction); });
    EXPECT_GE(reports.size(), 3U); // how many are heard in between depends on the processors
    EXPECT_TRUE(std::ranges::is_sorted(reports));
    EXPECT_EQ(reports.front(), 0.0);
    EXPECT_EQ(reports.back(), 1.0);
}

TEST_F(MixingExport, aFullDiskIsToldInTheSystemsWords) {
    record({{systemTrack, 12 * second, tone(440, 0.5F)}});
    compose({1.0F});
    files.setCapacity(files.contentOf("movie.mov").size() + 50'000);
    try {
        exportMix();
        ADD_FAILURE();
    } catch (const std::exception& error) {
        EXPECT_THAT(error.what(), HasSubstr("No space left on device"));
    }
}

TEST_F(MixingExport, thereIsNoSessionForNoTracks) {
    EXPECT_EQ(toolkit.makeExportSession(*composition), nullptr);
}

TEST_F(MixingExport, aTrackWithoutSoundIsNothingToExport) {
    composition->addAudioTrack();
    EXPECT_THROW(exportMix(), std::runtime_error);
    EXPECT_FALSE(files.exists("mix.m4a"));
}

TEST_F(MixingExport, aCompositionTakesSixteenTracks) {
    for (int i = 0; i < 16; ++i) {
        EXPECT_NE(composition->addAudioTrack(), nullptr);
    }
    EXPECT_EQ(composition->addAudioTrack(), nullptr);
}

TEST_F(MixingExport, aTimelineTakesOnlyWhatItsTrackHolds) {
    record({{systemTrack, second, tone(440, 0.5F)}});
    const auto track = toolkit.openAsset("movie.mov")->audioTracks()[0];
    CompositionTrack& target = *composition->addAudioTrack();
    const TimeRange all = track->timeRange();
    EXPECT_THROW(target.insert(all, nullptr, zeroTime), std::invalid_argument);
    EXPECT_THROW(target.insert(all, track, {1, 1}), std::invalid_argument);
    EXPECT_THROW(target.insert({{1, 48000}, all.duration}, track, zeroTime), std::invalid_argument);
    EXPECT_THROW(target.insert({{-1, 48000}, {5, 48000}}, track, zeroTime), std::invalid_argument);
    EXPECT_THROW(target.insert({}, track, zeroTime), std::invalid_argument);
    EXPECT_NO_THROW(target.insert(all, track, zeroTime));
}

TEST_F(MixingExport, aVolumeIsANumber) {
    record({{systemTrack, second, tone(440, 0.5F)}});
    compose({std::numeric_limits<float>::quiet_NaN()});
    EXPECT_THROW(exportMix(), std::invalid_argument);
}

TEST(MixingExportOnDisk, writesAndReadsRealFiles) {
    const TemporaryFolder folder;
    posix::PosixFileSystem files;
    MovieRecording recording(files, folder.path() / "movie.mov");
    ASSERT_TRUE(recording.appendAll(0, 3 * second, tone(440, 0.4F)));
    recording.finish();
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto composition = toolkit.makeComposition();
    for (const auto& track : toolkit.openAsset(recording.location())->audioTracks()) {
        composition->addAudioTrack()->insert(track->timeRange(), track, zeroTime);
    }
    const auto file = files.create(folder.path() / "mix.m4a", FileAudience::asUserPrefers);
    toolkit.makeExportSession(*composition)->exportTo(*file, {}, {});
    const auto samples = decode(folder.path() / "mix.m4a", 0);
    EXPECT_EQ(framesOf(folder.path() / "mix.m4a", 0), 3 * second);
    EXPECT_NEAR(levelOf(middleOf(samples), 440), 20 * std::log10(0.8), 0.1);
}

} // namespace

} // namespace vantoro
