// SPDX-License-Identifier: GPL-3.0-or-later

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

constexpr auto inShanghai = WallTime{.seconds = 1'740'792'615, .utcOffset = 8 * 3600};

/// The final file of a recording with tags, as other programs read it.
class TaggedFile : public ::testing::Test {
protected:
    /// `hasDied`: in the middle of its second fragment.
    std::filesystem::path mixOf(const RecordingTags& tags, const std::vector<TrackFormat>& tracks,
                                bool hasDied = false) {
        MovieRecording recording(files, "movie.mov", tracks);
        recording.writer().setTags(tags);
        EXPECT_TRUE(recording.appendAll(0, 3 * second, tone(440, 0.5F)));
        recording.finish();
        if (hasDied) {
            auto bytes = files.contentOf("movie.mov");
            bytes.resize(topBoxes(bytes)[5].offset + 100);
            files.put("movie.mov", bytes);
        }
        const auto opened = toolkit.openRecording("movie.mov");
        opened->mix(std::vector(tracks.size(), 1.0F), "Vantoro-2025-03-01-093115",
                    *files.create("mix.m4a", FileAudience::asUserPrefers), {}, {});
        return folder.put("mix.m4a", files.contentOf("mix.m4a"));
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit{files};
};

const std::vector<TrackFormat> both{systemTrack, microphoneTrack};

TEST_F(TaggedFile, tellsWhenItWasRecordedAndByWhat) {
    for (const auto& tracks : {both, {microphoneTrack}}) { // mixed, and copied
        const auto file = mixOf({.start = inShanghai, .title = {}}, tracks);
        files.remove("movie.mov");
        files.remove("mix.m4a");
        for (const auto& section : probe(file)) { // the stream, and the file itself
            EXPECT_EQ(section.at("TAG:creation_time"), "2025-03-01T01:30:15.000000Z");
        }
        const auto tags = probe(file).back();
        EXPECT_EQ(tags.at("TAG:date"), "2025-03-01T09:30:15+08:00");
        EXPECT_EQ(tags.at("TAG:encoder"), "Vantoro " VANTORO_VERSION);
        EXPECT_EQ(exifTag(file, "CreateDate"), "2025:03:01 01:30:15");
        EXPECT_EQ(exifTag(file, "TrackCreateDate"), "2025:03:01 01:30:15");
        EXPECT_EQ(exifTag(file, "MediaModifyDate"), "2025:03:01 01:30:15");
        EXPECT_EQ(exifTag(file, "ContentCreateDate"), "2025:03:01 09:30:15+08:00");
        EXPECT_EQ(exifTag(file, "Encoder"), "Vantoro " VANTORO_VERSION);
        EXPECT_EQ(exifTag(file, "Warning"), "");
    }
}

TEST_F(TaggedFile, isTitledAfterItsNameUnlessTheRecordingHasATitle) {
    const auto untitled = mixOf({.start = inShanghai, .title = {}}, both);
    EXPECT_EQ(probe(untitled).back().at("TAG:title"), "Vantoro-2025-03-01-093115");
    EXPECT_EQ(exifTag(untitled, "Title"), "Vantoro-2025-03-01-093115");
    files.remove("movie.mov");
    files.remove("mix.m4a");
    const auto titled = mixOf({.start = inShanghai, .title = "访谈 1"}, both);
    EXPECT_EQ(probe(titled).back().at("TAG:title"), "访谈 1");
    EXPECT_EQ(exifTag(titled, "Title"), "访谈 1");
}

TEST_F(TaggedFile, hasItsTagsEvenIfTheRecorderDied) {
    const auto file = mixOf({.start = inShanghai, .title = "Interview"}, both, true);
    const auto tags = probe(file).back();
    EXPECT_LT(framesOf(file, 0), 3 * second);
    EXPECT_EQ(tags.at("TAG:creation_time"), "2025-03-01T01:30:15.000000Z");
    EXPECT_EQ(tags.at("TAG:title"), "Interview");
}

TEST_F(TaggedFile, tellsTimesThatDoNotFitIntoThirtyTwoBits) {
    constexpr WallTime in2041{.seconds = 2'240'000'000, .utcOffset = 0};
    const auto file = mixOf({.start = in2041, .title = {}}, both);
    EXPECT_EQ(probe(file).back().at("TAG:creation_time"), "2040-12-24T22:13:20.000000Z");
    EXPECT_EQ(framesOf(file, 0), 3 * second);
}

TEST_F(TaggedFile, saysNothingAboutAnUnknownTime) {
    const auto file = mixOf({}, both);
    EXPECT_FALSE(probe(file).back().contains("TAG:creation_time"));
    EXPECT_FALSE(probe(file).back().contains("TAG:date"));
}

TEST_F(TaggedFile, movieItselfCarriesTheTags) {
    mixOf({.start = inShanghai, .title = "Interview"}, both);
    const auto movie = folder.put("movie.mov", files.contentOf("movie.mov"));
    EXPECT_EQ(probe(movie).back().at("TAG:creation_time"), "2025-03-01T01:30:15.000000Z");
    EXPECT_EQ(probe(movie).back().at("TAG:title"), "Interview");
    EXPECT_EQ(exifTag(movie, "TrackCreateDate"), "2025:03:01 01:30:15");
}

} // namespace
} // namespace vantoro::testing
