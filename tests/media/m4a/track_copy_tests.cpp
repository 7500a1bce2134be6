// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

/// Copies of a movie's tracks, each in a file of its own.
class TrackCopy : public ::testing::Test {
protected:
    std::filesystem::path copyOf(std::size_t track, const std::vector<std::byte>& movie) {
        for (const char* const path : {"movie.mov", "track.m4a"}) {
            if (files.exists(path)) {
                files.remove(path);
            }
        }
        files.put("movie.mov", movie);
        const auto output = files.create("track.m4a", FileAudience::asUserPrefers);
        toolkit.openRecording("movie.mov")
            ->copyTrack(track, {.title = "Name", .suffix = " (track)"}, *output, {}, {});
        return folder.put("track" + std::to_string(track) + ".m4a", files.contentOf("track.m4a"));
    }

    /// A digest of a track's packets as another program reads them.
    std::string packetsOf(const std::filesystem::path& file, std::size_t track) const {
        return run("ffmpeg -v error -i " + file.string() + " -map 0:" + std::to_string(track) +
                   " -c copy -f adts - | md5sum");
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit{files};
};

constexpr std::int64_t frames = 13 * second + 345;
const std::vector<std::int64_t> clickFrames{20'000, 200'000, 570'000};

TEST_F(TrackCopy, hasThePacketsOfItsTrackAndTheirTimes) {
    const auto bytes = recordMovie(frames, clicks(clickFrames));
    const auto movie = folder.put("movie.mov", bytes);
    for (const std::size_t track : {0U, 1U}) {
        const auto file = copyOf(track, bytes);
        EXPECT_EQ(packetsOf(file, 0), packetsOf(movie, track));
        EXPECT_EQ(framesOf(file, 0), frames);
        const auto stream = probe(file)[0];
        EXPECT_EQ(stream.at("channels"), track == 0 ? "2" : "1");
        EXPECT_EQ(stream.at("start_time"), "0.000000");
        const auto samples = decode(file, 0);
        EXPECT_EQ(clickIn(samples, 0, second),
                  clickIn(decode(movie, static_cast<int>(track)), 0, second));
        EXPECT_LE(std::abs(clickIn(samples, 540'000, 600'000) - 570'000), 2);
    }
}

TEST_F(TrackCopy, startsWithTheOthersEvenIfItsSourceCameLater) {
    MovieRecording recording(files, "late.mov");
    ASSERT_TRUE(recording.append(0, 0, 3 * second, tone(440, 0.3F)));
    ASSERT_TRUE(recording.append(1, second + 7, 3 * second, clicks({2 * second})));
    recording.finish();
    const auto file = copyOf(1, files.contentOf("late.mov"));
    EXPECT_LE(std::abs(clickIn(decode(file, 0), 0, 3 * second) - 2 * second), 2);
}

TEST_F(TrackCopy, isTitledAfterTheRecordingAndItsTrack) {
    const auto bytes = recordMovie(2 * second, silence());
    const auto file = copyOf(1, bytes);
    EXPECT_EQ(probe(file).back().at("TAG:title"), movieTags.title + " (track)");
    EXPECT_EQ(probe(file).back().at("TAG:creation_time"), "2025-03-01T01:30:15.000000Z");
}

TEST_F(TrackCopy, isSilentWherePacketsAreLostAndStaysInStep) {
    auto bytes = recordMovie(frames, clicks(clickFrames));
    const auto boxes = topBoxes(bytes);
    ASSERT_EQ(boxes[5].type, "moof");
    bytes[boxes[5].offset + 1] ^= std::byte{0x10};
    for (const std::size_t track : {0U, 1U}) {
        const auto file = copyOf(track, bytes);
        EXPECT_EQ(framesOf(file, 0), frames);
        const auto samples = decode(file, 0); // without a complaint
        EXPECT_LE(std::abs(clickIn(samples, 0, second) - 20'000), 2);
        EXPECT_LE(std::abs(clickIn(samples, 540'000, 600'000) - 570'000), 2);
        const auto gap = std::span(samples).subspan(49'152, 528'384 - 49'152 - 1024);
        EXPECT_LT(std::ranges::max(gap, {}, [](float sample) { return std::abs(sample); }), 1e-4F);
    }
}

TEST_F(TrackCopy, playsEverywhereEvenIfPacketsAreDamaged) {
    auto bytes = recordMovie(3 * second, tone(440, 0.5F), {microphoneTrack});
    const auto content = topBoxes(bytes)[6];
    ASSERT_EQ(content.type, "mdat");
    for (std::size_t place = content.offset + 2000; place < content.offset + 4000; ++place) {
        bytes[place] = std::byte{0xFF};
    }
    const auto file = copyOf(0, bytes);
    EXPECT_EQ(framesOf(file, 0), 3 * second);
    decode(file, 0); // fails on a complaint
}

TEST_F(TrackCopy, endsAtOnceOnAStopRequest) {
    files.put("movie.mov", recordMovie(3 * second, silence()));
    std::stop_source stop;
    stop.request_stop();
    const auto output = files.create("track.m4a", FileAudience::asUserPrefers);
    EXPECT_THROW(
        toolkit.openRecording("movie.mov")->copyTrack(0, {}, *output, {}, stop.get_token()),
        std::system_error);
}

} // namespace
} // namespace vantoro::testing
