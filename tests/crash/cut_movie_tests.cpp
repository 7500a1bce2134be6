// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ffmpeg/toolkit.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {

namespace {

using Bytes = std::vector<std::byte>;

/// Reads and exports truncated and damaged movies.
class CutMovie : public ::testing::Test {
protected:
    static constexpr std::int64_t frames = 120'000;

    /// Two tracks in fragments of half a second, so that many can be cut.
    static Bytes record(bool finished) {
        MemoryFileSystem files;
        {
            MovieRecording recording(files, "movie.mov", {systemTrack, microphoneTrack},
                                     {.first = {1, 4}, .others = {1, 2}});
            EXPECT_TRUE(recording.appendAll(0, frames, tone(440, 0.01F)));
            if (finished) {
                recording.finish();
            }
        }
        return files.contentOf("movie.mov");
    }

    void open(const Bytes& movie) {
        files.put("movie.mov", movie);
        opened = ffmpeg::FfmpegToolkit(files).openRecording("movie.mov");
    }

    /// 0 if there is no movie.
    std::int64_t durationOf(const Bytes& movie) {
        try {
            open(movie);
        } catch (const std::runtime_error&) {
            return 0;
        }
        const MediaTime duration = opened->duration();
        return duration.isValid() ? duration.inUnitsOf(48000) : 0;
    }

    /// Exports the movie opened last; another program must decode it without errors.
    void expectPlayableExport(std::int64_t duration) {
        if (files.exists("mix.m4a")) {
            files.remove("mix.m4a");
        }
        opened->mix(std::vector(opened->trackCount(), 1.0F), "",
                    *files.create("mix.m4a", FileAudience::asUserPrefers), {}, {});
        const auto file = folder.put("mix.m4a", files.contentOf("mix.m4a"));
        EXPECT_EQ(framesOf(file, 0), duration);
        EXPECT_GE(static_cast<std::int64_t>(decode(file, 0).size()), duration);
    }

    /// Where the boxes of a movie begin and end, those inside others included.
    static std::set<std::size_t> boundariesOf(const Bytes& movie) {
        std::set<std::size_t> boundaries;
        collect(movie, 0, movie.size(), boundaries);
        return boundaries;
    }

    /// Frames in the whole fragments before the cut, from `framesAt`.
    static std::int64_t
    framesBefore(std::size_t cut, const std::vector<std::pair<std::size_t, std::int64_t>>& ends) {
        std::int64_t whole = 0;
        for (const auto& [end, count] : ends) {
            whole = end <= cut ? count : whole;
        }
        return whole;
    }

    /// Each fragment's end, and the frames that another program finds in the movie up to there.
    std::vector<std::pair<std::size_t, std::int64_t>> fragmentEnds(const Bytes& movie) {
        std::vector<std::pair<std::size_t, std::int64_t>> ends;
        for (const TopBox& box : topBoxes(movie)) {
            if (box.type == "mdat") {
                const auto part = folder.put("part.mov", {movie.data(), box.end});
                ends.emplace_back(box.end, framesOf(part, 0));
            }
        }
        return ends;
    }

    TemporaryFolder folder;
    MemoryFileSystem files;
    std::unique_ptr<Recording> opened;

private:
    static std::size_t numberAt(const Bytes& movie, std::size_t offset) {
        std::size_t number = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            number = number << 8U | std::to_integer<std::size_t>(movie[offset + i]);
        }
        return number;
    }

    static void collect(const Bytes& movie, std::size_t begin, std::size_t end,
                        std::set<std::size_t>& boundaries) {
        while (begin + 8 <= end) {
            const std::size_t size = numberAt(movie, begin);
            boundaries.insert(begin);
            boundaries.insert(begin + size);
            std::string type;
            for (std::size_t i = 4; i < 8; ++i) {
                type += static_cast<char>(movie[begin + i]);
            }
            static const std::set<std::string> containers{"moov", "trak", "mdia", "minf", "stbl",
                                                          "mvex", "moof", "traf", "mfra"};
            if (containers.contains(type)) {
                collect(movie, begin + 8, begin + size, boundaries);
            }
            begin += size;
        }
    }
};

TEST_F(CutMovie, holdsItsWholeFragmentsWhereverItIsCut) {
    std::mt19937 random(1);
    for (const bool finished : {true, false}) {
        const Bytes movie = record(finished);
        const auto ends = fragmentEnds(movie);
        ASSERT_GE(ends.size(), 4U);
        std::set<std::size_t> cuts;
        for (const std::size_t boundary : boundariesOf(movie)) {
            cuts.insert({boundary - std::min<std::size_t>(boundary, 1), boundary, boundary + 1});
        }
        while (cuts.size() < 2200) {
            cuts.insert(random() % movie.size());
        }
        std::size_t index = 0;
        for (const std::size_t cut : cuts) {
            const std::size_t size = std::min(cut, movie.size());
            const Bytes part(movie.begin(), movie.begin() + static_cast<std::ptrdiff_t>(size));
            const std::int64_t expected = framesBefore(size, ends);
            ASSERT_EQ(durationOf(part), expected) << "cut at " << size;
            if (expected > 0 && ++index % 150 == 0) {
                expectPlayableExport(expected);
            }
        }
    }
}

TEST_F(CutMovie, neverClaimsMoreThanThereWasAfterAnyDamage) {
    std::mt19937 random(2);
    const Bytes movie = record(false);
    int exported = 0;
    for (int round = 0; round < 2000; ++round) {
        Bytes damaged = movie;
        // Mostly in the descriptions, where it matters; sometimes anywhere.
        const std::size_t reach = round % 3 == 0 ? damaged.size() : 3000;
        for (int i = 0; i < 1 + (round % 8); ++i) {
            damaged[random() % reach] = static_cast<std::byte>(random());
        }
        const std::int64_t duration = durationOf(damaged);
        ASSERT_LE(duration, frames);
        if (duration > 0 && opened->trackCount() > 0 && ++exported % 60 == 0) {
            expectPlayableExport(duration);
        }
    }
    EXPECT_GT(exported, 400);
}

} // namespace

} // namespace vantoro::testing
