// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

/// The mix of a movie's tracks at a volume.
class PacketCopy : public ::testing::Test {
protected:
    void exportAt(const std::vector<std::byte>& movie, float volume,
                  const ExportProgress& progress = {}) {
        files.put("movie.mov", movie);
        if (files.exists("mix.m4a")) {
            files.remove("mix.m4a");
        }
        ffmpeg::FfmpegToolkit toolkit(files);
        const auto recording = toolkit.openRecording("movie.mov");
        recording->mix(std::vector(recording->trackCount(), volume), "",
                       *files.create("mix.m4a", FileAudience::asUserPrefers), progress, {});
        file = folder.put("mix.m4a", files.contentOf("mix.m4a"));
    }

    /// A digest of the packets as another program reads them.
    std::string packetsOf(const std::filesystem::path& movie) const {
        return run("ffmpeg -v error -i " + movie.string() + " -map 0:0 -c copy -f adts - | md5sum");
    }

    std::filesystem::path put(const std::vector<std::byte>& movie) const {
        return folder.put("movie.mov", movie);
    }

    double levelInTheMiddle() const {
        const auto samples = decode(file, 0);
        return levelOf(std::span(samples).subspan(9600, 48000), 440);
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    std::filesystem::path file;
};

const Sound& speech() {
    static const Sound sound = tone(440, 0.5F);
    return sound;
}

TEST_F(PacketCopy, singleTrackAtFullVolumeKeepsItsPackets) {
    for (const auto& track : {systemTrack, microphoneTrack}) {
        const std::int64_t frames = 12 * second + 345;
        const auto movie = recordMovie(frames, speech(), {track});
        exportAt(movie, 1.0F);
        EXPECT_EQ(packetsOf(file), packetsOf(put(movie)));
        EXPECT_EQ(framesOf(file, 0), frames);
        const auto stream = probe(file)[0];
        EXPECT_EQ(stream.at("channels"), std::to_string(track.channels));
        EXPECT_EQ(stream.at("start_time"), "0.000000");
        EXPECT_NEAR(levelInTheMiddle(), 20 * std::log10(0.5), 0.1);
    }
}

TEST_F(PacketCopy, trackOfAnUnfinishedFileEndsWithItsLastWholeFragment) {
    const auto finished = recordMovie(12 * second, speech(), {microphoneTrack});
    const auto boxes = topBoxes(finished);
    const std::vector unfinished(
        finished.begin(), finished.begin() + static_cast<std::ptrdiff_t>(boxes[5].offset) + 100);
    exportAt(unfinished, 1.0F);
    EXPECT_EQ(framesOf(file, 0), 48128);
    EXPECT_EQ(packetsOf(file),
              packetsOf(put({finished.begin(),
                             finished.begin() + static_cast<std::ptrdiff_t>(boxes[5].offset)})));
}

TEST_F(PacketCopy, otherVolumeIsRecoded) {
    const auto movie = recordMovie(3 * second, speech(), {systemTrack});
    exportAt(movie, 0.9F);
    EXPECT_NE(packetsOf(file), packetsOf(put(movie)));
}

TEST_F(PacketCopy, twoTracksAreMixed) {
    exportAt(recordMovie(3 * second, tone(440, 0.2F)), 1.0F);
    EXPECT_NEAR(levelInTheMiddle(), 20 * std::log10(0.4), 0.1);
}

TEST_F(PacketCopy, damagedPacketsAreRecoded) {
    auto movie = recordMovie(3 * second, speech(), {systemTrack});
    const auto boxes = topBoxes(movie);
    // One bit of a packet in the second fragment.
    movie[boxes[6].offset + 5000] ^= std::byte{0x10};
    exportAt(movie, 1.0F);
    EXPECT_NE(packetsOf(file), packetsOf(put(movie)));
    EXPECT_EQ(framesOf(file, 0), 3 * second);
}

TEST_F(PacketCopy, trackWithAGapIsRecodedAndSilentThere) {
    for (const auto& track : {systemTrack, microphoneTrack}) {
        auto movie = recordMovie(13 * second, clicks({20'000, 200'000, 570'000}), {track});
        const auto boxes = topBoxes(movie);
        ASSERT_EQ(boxes[5].type, "moof");
        movie[boxes[5].offset + 1] ^= std::byte{0x10};
        exportAt(movie, 1.0F);
        EXPECT_EQ(framesOf(file, 0), 13 * second);
        const auto samples = decode(file, 0);
        EXPECT_LE(std::abs(clickIn(samples, 0, second) - 20'000), 2);
        EXPECT_LE(std::abs(clickIn(samples, 540'000, 600'000) - 570'000), 2);
        const auto gap = std::span(samples).subspan(49'152, 528'384 - 49'152 - 1024);
        EXPECT_LT(std::ranges::max(gap, {}, [](float sample) { return std::abs(sample); }), 1e-4F);
    }
}

TEST_F(PacketCopy, soundBeforeAGapDoesNotEchoAfterIt) {
    const auto toneAtFirst = [](std::int64_t frame) {
        return frame < 60'000 ? speech()(frame) : 0.0F;
    };
    auto movie = recordMovie(13 * second, toneAtFirst, {microphoneTrack});
    movie[topBoxes(movie)[5].offset + 1] ^= std::byte{0x10};
    exportAt(movie, 1.0F);
    const auto samples = decode(file, 0);
    const auto behind = std::span(samples).subspan(528'384 - 2048, 4096);
    EXPECT_LT(std::ranges::max(behind, {}, [](float sample) { return std::abs(sample); }), 1e-3F);
}

TEST_F(PacketCopy, packetsWithoutAChecksumAreRecoded) {
    auto movie = recordMovie(3 * second, speech(), {systemTrack});
    const auto boxes = topBoxes(movie);
    ASSERT_EQ(boxes[7].type, "uuid");
    movie.erase(movie.begin() + static_cast<std::ptrdiff_t>(boxes[7].offset), movie.end());
    const auto packetsBefore = packetsOf(put(movie));
    exportAt(movie, 1.0F);
    EXPECT_NE(packetsOf(file), packetsBefore);
    EXPECT_EQ(framesOf(file, 0), 3 * second);
}

TEST_F(PacketCopy, progressNeverFallsAndEndsAtOne) {
    std::vector<double> reports;
    exportAt(recordMovie(60 * second, silence(), {microphoneTrack}), 1.0F,
             [&reports](double fraction) { reports.push_back(fraction); });
    EXPECT_GT(reports.size(), 2U);
    EXPECT_TRUE(std::ranges::is_sorted(reports));
    EXPECT_EQ(reports.front(), 0.0);
    EXPECT_EQ(reports.back(), 1.0);
}

} // namespace
} // namespace vantoro::testing
