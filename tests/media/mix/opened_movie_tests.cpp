// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <algorithm>

#include "media/movie/movie.h"
#include "platform/ffmpeg/toolkit.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

std::unique_ptr<Recording> open(const std::vector<std::byte>& movie) {
    MemoryFileSystem files; // a movie keeps its file open but not the file system
    files.put("movie.mov", movie);
    return ffmpeg::FfmpegToolkit(files).openRecording("movie.mov");
}

std::int64_t framesIn(MediaTime time) {
    return time.inUnitsOf(48000);
}

TEST(OpenedMovie, knowsTheTracksOfAFinishedMovieInFileOrder) {
    MemoryFileSystem files;
    MovieRecording recording(files, "movie.mov");
    ASSERT_TRUE(recording.append(0, 0, 2 * second + 17, tone(440, 0.5F)));
    ASSERT_TRUE(recording.append(1, 0, 3 * second + 5, tone(440, 0.5F)));
    recording.finish();
    const auto movie = media::openMovie(files, "movie.mov");
    EXPECT_EQ(media::audioTracks(*movie), (std::vector<std::size_t>{0, 1}));
    EXPECT_EQ(media::framesIn(*movie, 0), 2 * second + 17);
    EXPECT_EQ(media::framesIn(*movie, 1), 3 * second + 5);
    const auto opened = open(files.contentOf("movie.mov"));
    EXPECT_EQ(opened->trackCount(), 2U);
    EXPECT_EQ(framesIn(opened->duration()), 3 * second + 5);
}

TEST(OpenedMovie, aMovieCutAnywhereHoldsItsWholeFragments) {
    const auto movie = recordMovie(22 * second, tone(440, 0.5F));
    std::vector<std::size_t> ends; // of the fragments
    std::size_t headerEnd = 0;
    for (const TopBox& box : topBoxes(movie)) {
        if (box.type == "mdat") {
            ends.push_back(box.end);
        } else if (box.type == "moov") {
            headerEnd = box.end;
        }
    }
    ASSERT_EQ(ends.size(), 4U);
    // The first packet ends after each nominal end, and the movie's end.
    const std::vector<std::int64_t> durations{48128, 528384, 1008640, 22 * second};
    for (std::size_t size = 0; size <= movie.size(); size += (size % 4096 < 600 ? 13U : 1009U)) {
        const std::vector<std::byte> cut(movie.begin(),
                                         movie.begin() + static_cast<std::ptrdiff_t>(size));
        if (size < headerEnd) {
            EXPECT_THROW(open(cut), std::runtime_error) << size;
            continue;
        }
        const auto opened = open(cut);
        const auto whole = std::ranges::upper_bound(ends, size) - ends.begin();
        if (whole == 0) {
            EXPECT_FALSE(opened->duration().isValid()) << size;
            EXPECT_EQ(opened->trackCount(), 0U) << size;
        } else {
            EXPECT_EQ(framesIn(opened->duration()), durations[static_cast<std::size_t>(whole) - 1])
                << size;
        }
    }
}

TEST(OpenedMovie, otherFilesAreDamagedMovies) {
    EXPECT_THROW(open({}), std::runtime_error);
    EXPECT_THROW(open(std::vector<std::byte>(100'000)), std::runtime_error);
    EXPECT_THROW(open(std::vector<std::byte>(100'000, std::byte{0xff})), std::runtime_error);
    try {
        open(std::vector<std::byte>(7));
        ADD_FAILURE();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "The recording file is damaged: it ends too early.");
    }
}

TEST(OpenedMovie, aMissingFileIsASystemError) {
    MemoryFileSystem files;
    EXPECT_THROW(ffmpeg::FfmpegToolkit(files).openRecording("movie.mov"), std::system_error);
}

TEST(OpenedMovie, aMovieWithoutSoundHasNoTracks) {
    const TemporaryFolder folder;
    const auto video = folder.path() / "video.mov";
    run("ffmpeg -nostdin -v error -f lavfi -i color=size=16x16:duration=1 -c:v mpeg4 " +
        video.string());
    MemoryFileSystem files;
    const std::string bytes = run("cat " + video.string());
    const auto content = std::as_bytes(std::span(bytes));
    const auto opened = open({content.begin(), content.end()});
    EXPECT_EQ(opened->trackCount(), 0U);
    EXPECT_FALSE(opened->duration().isValid());
}

TEST(OpenedMovie, aMovieWithoutFragmentsHasNoTracks) {
    const TemporaryFolder folder;
    const auto other = folder.path() / "other.mov";
    run("ffmpeg -nostdin -v error -f lavfi -i sine=sample_rate=48000:duration=1 -c:a aac " +
        other.string());
    const std::string bytes = run("cat " + other.string());
    const auto content = std::as_bytes(std::span(bytes));
    const auto opened = open({content.begin(), content.end()});
    EXPECT_FALSE(opened->duration().isValid());
}

} // namespace
} // namespace vantoro::testing
