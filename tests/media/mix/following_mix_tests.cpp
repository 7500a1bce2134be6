// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/following_mix.h"

#include <algorithm>
#include <atomic>
#include <span>

#include <gtest/gtest.h>

#include "engine/recorder/track_mixing.h"
#include "media/boxes/box_reader.h"
#include "platform/ffmpeg/toolkit.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

using Volumes = std::vector<float>;

/// A recording whose mix is expected, as the recorder makes both.
class FollowingMixTest : public ::testing::Test {
protected:
    MemoryFileSystem files;
    std::atomic<bool> isPowerSaved = false;
    MovieRecording recording{files, "movie.mov", {systemTrack, microphoneTrack}, {}, [this] {
                                 return isPowerSaved.load();
                             }};
    std::int64_t position = 0;

    void recordSeconds(std::int64_t seconds) {
        const std::int64_t end = position + (seconds * second);
        ASSERT_TRUE(recording.appendAll(position, end, tone(440, 0.3F)));
        position = end;
    }

    /// A finished movie whose mix has begun.
    void recordFollowed() {
        recording.writer().expectMix({0.9F, 0.5F});
        recordSeconds(12);
        ASSERT_TRUE(files.waitForUnnamed(1));
        recording.finish();
    }

    /// As the recorder opens it.
    std::unique_ptr<Recording> openWritten() { return recording.writer().openRecording(); }

    /// As a later process opens it.
    std::unique_ptr<Recording> openAnew() {
        return ffmpeg::FfmpegToolkit(files).openRecording("movie.mov");
    }

    void mix(Recording& written, const char* destination, const Volumes& volumes) {
        mixTracks(written, OutputPlace(files, "", destination),
                  [&](std::size_t track) { return volumes[track]; }, {}, {});
    }

    /// Whether the mix was made ahead; checks that it equals a mix made afterwards.
    bool finishAndMix(const Volumes& volumes) {
        recording.finish();
        mix(*openWritten(), "mix", volumes);
        mix(*openAnew(), "expected", volumes);
        EXPECT_TRUE(files.contentOf("mix.m4a") == files.contentOf("expected.m4a"));
        EXPECT_EQ(files.journalOf("expected.m4a").front(), "create");
        return files.journalOf("mix.m4a").front() == "unnamed";
    }
};

TEST_F(FollowingMixTest, isUsedForTheExportIfTheVolumesHaveNotChanged) {
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(12);
    ASSERT_TRUE(files.waitForUnnamed(1));
    EXPECT_TRUE(finishAndMix({0.9F, 0.5F}));
    EXPECT_EQ(files.list("").size(), 3U); // the movie and both mixes
}

TEST_F(FollowingMixTest, restartsWhenTheVolumesChange) {
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(12);
    ASSERT_TRUE(files.waitForUnnamed(1));
    recording.writer().expectMix({0.9F, 0.25F});
    ASSERT_TRUE(files.waitForUnnamed(2));
    EXPECT_TRUE(finishAndMix({0.9F, 0.25F}));
}

TEST_F(FollowingMixTest, isDiscardedWhenTheVolumesChangeAtTheEnd) {
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(12);
    ASSERT_TRUE(files.waitForUnnamed(1));
    recording.writer().expectMix({0.9F, 0.25F});
    EXPECT_FALSE(finishAndMix({0.9F, 0.3F}));
}

TEST_F(FollowingMixTest, isNotMadeWithoutExpectedVolumes) {
    recordSeconds(12);
    EXPECT_FALSE(finishAndMix({0.9F, 0.5F}));
}

TEST_F(FollowingMixTest, isGivenUpOnANearlyFullDisk) {
    files.setCapacity(FollowingMix::minFreeSpace);
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(12);
    ASSERT_TRUE(files.waitUntilSpaceIsAsked());
    EXPECT_FALSE(finishAndMix({0.9F, 0.5F}));
}

TEST_F(FollowingMixTest, isNotMadeInPowerSaveMode) {
    isPowerSaved = true;
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(12);
    ASSERT_TRUE(files.waitUntilSpaceIsAsked()); // then for the mix
    EXPECT_FALSE(finishAndMix({0.9F, 0.5F}));
}

TEST_F(FollowingMixTest, isNotMadeWithoutUnnamedFiles) {
    files.hasUnnamedFiles = false;
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(12);
    ASSERT_TRUE(files.waitForUnnamed(1));
    EXPECT_FALSE(finishAndMix({0.9F, 0.5F}));
}

TEST_F(FollowingMixTest, itsDiskFailureDoesNotAffectTheRecording) {
    recordFollowed();
    files.syncFails = true; // of the following mix
    EXPECT_THROW(mix(*openWritten(), "mix", {0.9F, 0.5F}), std::system_error);
    files.syncFails = false;
    mix(*openWritten(), "mix", {0.9F, 0.5F});
    EXPECT_EQ(files.journalOf("mix.m4a").front(), "create");
}

TEST_F(FollowingMixTest, knowsTheFinishedMovieWithoutReadingItAgain) {
    recordFollowed();
    const double seconds = openWritten()->duration().seconds();
    auto content = files.contentOf("movie.mov");
    std::ranges::fill(std::span(content).first(64), std::byte(0));
    files.put("movie.mov", content);
    EXPECT_EQ(openWritten()->duration().seconds(), seconds);
    EXPECT_THROW(openAnew(), DamagedMovie);
}

TEST_F(FollowingMixTest, rescansAMovieThatHasShrunk) {
    recordFollowed();
    const double seconds = openWritten()->duration().seconds();
    auto content = files.contentOf("movie.mov");
    content.resize(content.size() / 2);
    files.put("movie.mov", content);
    EXPECT_LT(openWritten()->duration().seconds(), seconds);
    EXPECT_GT(openWritten()->duration().seconds(), 0);
}

TEST_F(FollowingMixTest, endsWithAnAbandonedRecording) {
    recording.writer().expectMix({0.9F, 0.5F});
    recordSeconds(60);
    ASSERT_TRUE(files.waitForUnnamed(1));
}

} // namespace
} // namespace vantoro::testing
