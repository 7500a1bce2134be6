// SPDX-License-Identifier: GPL-3.0-or-later

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

/// A recording with marks, and the chapters of its final file as another program reads them.
class MarkedFile : public ::testing::Test {
protected:
    void record(std::int64_t from, std::int64_t to) {
        ASSERT_TRUE(recording.appendAll(from, to, tone(440, 0.3F)));
    }

    /// At a frame of the recording.
    void mark(std::int64_t frame, const std::string& text) {
        recording.writer().addMark(SoundBuffer(frame, 0, 1, silence()).buffer().presentationTime,
                                   text);
    }

    /// Of the file that is there now.
    std::filesystem::path mix() {
        toolkit.openRecording("movie.mov")
            ->mix({1.0F, 1.0F}, "", *files.create("mix.m4a", FileAudience::asUserPrefers), {}, {});
        return folder.put("mix.m4a", files.contentOf("mix.m4a"));
    }

    /// One line per chapter: its start in seconds and its title.
    static std::string chaptersOf(const std::filesystem::path& file) {
        return run("ffprobe -v error -show_entries chapter=start_time:chapter_tags=title"
                   " -of csv=p=0 " +
                   file.string());
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    MovieRecording recording{files, "movie.mov"};
    ffmpeg::FfmpegToolkit toolkit{files};
};

TEST_F(MarkedFile, hasTheMarksAsChaptersInTheirOrder) {
    record(0, 2 * second);
    mark(second + 24'000, "问题 1");
    record(2 * second, 13 * second);
    mark(12 * second, "Answer");
    mark(2 * second, "Later thought");
    recording.finish();
    const auto file = mix();
    EXPECT_EQ(chaptersOf(file), "1.500000,问题 1\n2.000000,Later thought\n12.000000,Answer\n");
    EXPECT_EQ(exifTag(file, "ChapterList"), "[0:00:01.500] 问题 1, [0:00:02.000] Later thought, "
                                            "[0:00:12.000] Answer");
    EXPECT_EQ(framesOf(file, 0), 13 * second);
}

TEST_F(MarkedFile, keepsTheMarksOfTheFragmentsThatADeathLeft) {
    record(0, second / 2);
    mark(second / 4, "On the disk");
    record(second / 2, 3 * second);
    mark(2 * second, "Not yet");
    record(3 * second, 12 * second);
    recording.finish();
    auto bytes = files.contentOf("movie.mov");
    bytes.resize(topBoxes(bytes)[5].offset + 100);
    files.put("movie.mov", bytes);
    EXPECT_EQ(chaptersOf(mix()), "0.250000,On the disk\n");
}

TEST_F(MarkedFile, hasMarksFromBeforeItsFirstFrameAndBehindItsLast) {
    mark(-second, "Before");
    record(0, 2 * second);
    mark(5 * second, "Behind");
    recording.finish();
    EXPECT_EQ(chaptersOf(mix()), "0.000000,Before\n1.999979,Behind\n");
}

TEST_F(MarkedFile, hasNoChaptersWithoutMarks) {
    record(0, 2 * second);
    recording.finish();
    EXPECT_EQ(chaptersOf(mix()), "");
}

TEST_F(MarkedFile, movieWithMarksIsWholeAndPlays) {
    record(0, 2 * second);
    mark(second, "Mark");
    record(2 * second, 12 * second);
    mark(11 * second, "Mark");
    recording.finish();
    EXPECT_TRUE(toolkit.openRecording("movie.mov")->isWhole());
    const auto movie = folder.put("movie.mov", files.contentOf("movie.mov"));
    EXPECT_EQ(framesOf(movie, 0), 12 * second);
    decode(movie, 1); // fails on a complaint
}

} // namespace
} // namespace vantoro::testing
