// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <algorithm>

#include <algorithm>
#include <cmath>

#include "platform/posix/posix_file_system.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

std::vector<std::string> typesOf(const std::vector<TopBox>& boxes) {
    std::vector<std::string> types;
    std::ranges::transform(boxes, std::back_inserter(types), &TopBox::type);
    return types;
}

TEST(MovieLayout, isAQuickTimeMovieOfTwoAacTracks) {
    const TemporaryFolder folder;
    posix::PosixFileSystem files;
    MovieRecording recording(files, folder.path() / "movie.mov");
    ASSERT_TRUE(recording.appendAll(0, 3 * second, tone(440, 0.5F)));
    recording.finish();
    const auto sections = probe(recording.location());
    ASSERT_EQ(sections.size(), 3U);
    const auto& stereo = sections[0];
    const auto& mono = sections[1];
    EXPECT_EQ(sections[2].at("TAG:major_brand"), "qt  ");
    EXPECT_EQ(sections[2].at("format_name"), "mov,mp4,m4a,3gp,3g2,mj2");
    for (const auto* stream : {&stereo, &mono}) {
        EXPECT_EQ(stream->at("codec_name"), "aac");
        EXPECT_EQ(stream->at("profile"), "LC");
        EXPECT_EQ(stream->at("sample_rate"), "48000");
        EXPECT_EQ(stream->at("time_base"), "1/48000");
    }
    for (const int track : {0, 1}) {
        EXPECT_EQ(firstPacketOf(recording.location(), track), -1024) << "the priming";
    }
    EXPECT_EQ(stereo.at("channels"), "2");
    EXPECT_EQ(mono.at("channels"), "1");
}

TEST(MovieLayout, bitRatesAreThoseOfTheSettings) {
    // Noise needs all bits that an encoder may use.
    std::uint32_t state = 1;
    const Sound noise = [&state](std::int64_t) {
        state = (state * 1664525U) + 1013904223U;
        return static_cast<float>(state >> 8U) / 16777216.0F - 0.5F;
    };

    struct Case {
        TrackFormat track;
        double bitRate;
    };

    for (const Case& test : {Case{systemTrack, 192000}, Case{microphoneTrack, 96000}}) {
        const double seconds = 20;
        const auto movie =
            recordMovie(static_cast<std::int64_t>(seconds) * second, noise, {test.track});
        EXPECT_NEAR(static_cast<double>(movie.size()) * 8 / seconds, test.bitRate,
                    test.bitRate * 0.05);
    }
}

TEST(MovieLayout, firstFragmentClosesAfterOneSecondThenEveryTen) {
    const auto movie = recordMovie(25 * second, tone(440, 0.5F));
    const auto boxes = topBoxes(movie);
    EXPECT_EQ(typesOf(boxes), (std::vector<std::string>{"ftyp", "moov", "moof", "mdat", "uuid",
                                                        "moof", "mdat", "uuid", "moof", "mdat",
                                                        "uuid", "moof", "mdat", "uuid", "mfra"}));
    // The file truncated after each fragment holds those fragments.
    const std::vector<std::int64_t> expected{48128, 528384, 1008640, 25 * second};
    const TemporaryFolder folder;
    std::size_t fragment = 0;
    for (const TopBox& box : boxes) {
        if (box.type != "mdat") {
            continue;
        }
        const auto file = folder.put("cut.mov", std::span(movie).first(box.end));
        for (int track = 0; track < 2; ++track) {
            EXPECT_EQ(framesOf(file, track), expected[fragment]);
            EXPECT_GE(decode(file, track).size(), static_cast<std::size_t>(expected[fragment]));
        }
        ++fragment;
    }
}

TEST(MovieLayout, probeReadsTheUnfinishedFileAfterEachFragment) {
    const TemporaryFolder folder;
    MemoryFileSystem files;
    MovieRecording recording(files, "movie.mov");
    std::size_t size = 0;
    std::int64_t recorded = 0;
    for (const std::int64_t end : {2 * second, 12 * second, 22 * second}) {
        ASSERT_TRUE(recording.appendAll(recorded, end, tone(440, 0.5F)));
        recorded = end;
        ASSERT_TRUE(files.waitForSyncedSize("movie.mov", size + 1));
        const auto movie = files.contentOf("movie.mov");
        EXPECT_GT(movie.size(), size);
        size = movie.size();
        const auto sections = probe(folder.put("movie.mov", movie));
        ASSERT_EQ(sections.size(), 3U);
        EXPECT_NEAR(std::stod(sections[2].at("duration")), static_cast<double>(end) / second, 1.05);
    }
}

TEST(MovieLayout, everyFragmentIsOneWriteAndOneSync) {
    MemoryFileSystem files;
    MovieRecording recording(files, "movie.mov");
    EXPECT_EQ(files.audience(), FileAudience::userOnly);
    ASSERT_TRUE(recording.appendAll(0, 12 * second, tone(440, 0.5F)));
    recording.finish();
    EXPECT_EQ(files.journalOf("movie.mov"),
              (std::vector<std::string>{"create", "write", "sync", "write", "sync", "write", "sync",
                                        "write", "sync", "reach", "close"}));
}

TEST(MovieLayout, theFileExistsForItsUserOnlyBeforeWritingStarts) {
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto writer = toolkit.makeWriter("movie.mov", {}, {});
    EXPECT_NE(writer->addTrack(systemTrack), nullptr);
    EXPECT_EQ(files.journalOf("movie.mov"), std::vector<std::string>{"create"});
    EXPECT_EQ(files.audience(), FileAudience::userOnly);
    EXPECT_EQ(writer->status(), WriterStatus::unknown);
    EXPECT_TRUE(writer->start(zeroTime));
    EXPECT_EQ(writer->status(), WriterStatus::writing);
    EXPECT_EQ(writer->addTrack(microphoneTrack), nullptr);
}

TEST(MovieLayout, startWithoutATrackFails) {
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto writer = toolkit.makeWriter("movie.mov", {}, {});
    EXPECT_FALSE(writer->start(zeroTime));
    EXPECT_EQ(writer->status(), WriterStatus::failed);
    EXPECT_EQ(files.journalOf("movie.mov"), std::vector<std::string>{"create"});
}

TEST(MovieLayout, refusesTracksThatItCannotWrite) {
    MemoryFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto writer = toolkit.makeWriter("movie.mov", {}, {});
    EXPECT_EQ(writer->addTrack({.channels = 0}), nullptr);
    EXPECT_EQ(writer->addTrack({.channels = 3}), nullptr);
    EXPECT_EQ(writer->addTrack({.bitRate = 0}), nullptr);
    EXPECT_NE(writer->addTrack(systemTrack), nullptr);
}

TEST(MovieLayout, aMovieMayHaveASingleTrack) {
    const TemporaryFolder folder;
    const auto sections =
        probe(folder.put("movie.mov", recordMovie(2 * second, tone(440, 0.5F), {microphoneTrack})));
    ASSERT_EQ(sections.size(), 2U);
    EXPECT_EQ(sections[0].at("channels"), "1");
}

TEST(MovieLayout, aRecordingShorterThanTheFirstFragmentIsWhole) {
    const TemporaryFolder folder;
    for (const std::int64_t frames : {1LL, 100LL, 1024LL, 4801LL, 47999LL}) {
        const auto file = folder.put("movie.mov", recordMovie(frames, tone(440, 0.5F)));
        EXPECT_EQ(framesOf(file, 0), frames);
        EXPECT_EQ(framesOf(file, 1), frames);
    }
}

TEST(MovieLayout, anUnfinishedWriterLeavesWhatItWrote) {
    MemoryFileSystem files;
    {
        MovieRecording recording(files, "movie.mov");
        ASSERT_TRUE(recording.appendAll(0, 12 * second, tone(440, 0.5F)));
    }
    EXPECT_EQ(
        typesOf(topBoxes(files.contentOf("movie.mov"))),
        (std::vector<std::string>{"ftyp", "moov", "moof", "mdat", "uuid", "moof", "mdat", "uuid"}));
}

} // namespace
} // namespace vantoro::testing
