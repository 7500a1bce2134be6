// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/growing_mix.h"

#include <cmath>

#include <gtest/gtest.h>

#include "engine/recorder/track_mixing.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "platform/ffmpeg/toolkit.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

/// Tones that fade in and out, so that no two packets are equal.
float melody(std::int64_t frame) {
    const auto time = static_cast<double>(frame) / 48000;
    const double pitch = 200 + (50 * std::floor(time * 3));
    return static_cast<float>(0.4 * std::sin(time * pitch * 6.283) * std::sin(time * 9));
}

/// Fragments of a second and a half, so that a short movie has many.
constexpr FragmentIntervals shortFragments{.first = {300, 600}, .others = {900, 600}};

class GrowingMixTest : public ::testing::Test {
protected:
    MemoryFileSystem files;
    MovieRecording recording{files, "movie.mov", {systemTrack, microphoneTrack}, shortFragments};
    std::vector<float> volumes{0.9F, 0.4F};

    /// Records both sources in this range of frames.
    void record(std::int64_t from, std::int64_t to) {
        ASSERT_TRUE(recording.appendAll(from, to, melody));
    }

    void exportTo(const std::string& name) {
        ffmpeg::FfmpegToolkit toolkit(files);
        const auto finished = toolkit.openRecording("movie.mov");
        mixTracks(*finished, OutputPlace(files, "", name),
                  [this](std::size_t track) { return volumes[track]; }, {}, {});
    }

    /// The mix as an export defines it.
    Mix wholeMix() {
        const std::shared_ptr<const Movie> movie = openMovie(files, "movie.mov");
        Mix mix;
        for (std::size_t track = 0; track < volumes.size(); ++track) {
            mix.push_back({.movie = movie,
                           .track = track,
                           .frames = framesIn(*movie, track),
                           .volume = volumes[track]});
        }
        return mix;
    }

    void expectTheSameFile() {
        exportTo("exported");
        EXPECT_TRUE(files.contentOf("followed.m4a") == files.contentOf("exported.m4a"));
    }
};

TEST_F(GrowingMixTest, equalsAnExportWheneverItAdvances) {
    constexpr std::int64_t length = (75 * second) + 321; // two and a half segments
    record(0, 3 * second);
    ASSERT_TRUE(files.waitForSyncedSize("movie.mov", 10'000));
    GrowingMix mix(ffmpeg::codec(), files, "movie.mov", volumes);
    for (std::int64_t from = 3 * second; from < length; from += 7 * second) {
        mix.advance({});
        record(from, std::min(from + (7 * second), length));
    }
    recording.finish();
    mix.complete(wholeMix(), movieTags, 2, {}, {})->takeName("followed.m4a");
    expectTheSameFile();
}

TEST_F(GrowingMixTest, equalsAnExportIfOneSourceEndsEarly) {
    record(0, 20 * second);
    ASSERT_TRUE(files.waitForSyncedSize("movie.mov", 10'000));
    GrowingMix mix(ffmpeg::codec(), files, "movie.mov", volumes);
    mix.advance({});
    recording.track(1).end();
    ASSERT_TRUE(recording.append(0, 20 * second, 26 * second, melody));
    mix.advance({});
    recording.finish();
    mix.complete(wholeMix(), movieTags, 1, {}, {})->takeName("followed.m4a");
    expectTheSameFile();
}

TEST_F(GrowingMixTest, equalsAnExportIfNothingWasMixedYet) {
    record(0, 40 * second);
    recording.finish();
    GrowingMix mix(ffmpeg::codec(), files, "movie.mov", volumes);
    mix.complete(wholeMix(), movieTags, 2, {}, {})->takeName("followed.m4a");
    expectTheSameFile();
}

TEST_F(GrowingMixTest, failsForOtherVolumes) {
    record(0, 5 * second);
    recording.finish();
    GrowingMix mix(ffmpeg::codec(), files, "movie.mov", volumes);
    mix.advance({});
    volumes[1] = 0.5F;
    EXPECT_THROW(mix.complete(wholeMix(), movieTags, 2, {}, {})->takeName("followed.m4a"),
                 std::runtime_error);
    EXPECT_FALSE(files.exists("followed.m4a"));
}

TEST_F(GrowingMixTest, doesNotReplaceAnExistingFile) {
    record(0, 5 * second);
    recording.finish();
    files.put("followed.m4a", std::vector<std::byte>(7));
    GrowingMix mix(ffmpeg::codec(), files, "movie.mov", volumes);
    EXPECT_THROW(mix.complete(wholeMix(), movieTags, 2, {}, {})->takeName("followed.m4a"),
                 std::system_error);
    EXPECT_EQ(files.contentOf("followed.m4a").size(), 7U);
}

} // namespace
} // namespace vantoro::testing
