// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <algorithm>

#include <random>
#include <string_view>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"
#include "media/codec/aac.h"
#include "media/movie/fragment_parser.h"
#include "media/movie/movie.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

/// Opens the bytes and mixes all tracks.
void readAll(const std::vector<std::byte>& movie) {
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto recording = toolkit.openRecording("movie.mov");
    if (recording->trackCount() > 0) {
        recording->mix(std::vector(recording->trackCount(), 1.0F), "",
                       *files.create("mix.m4a", FileAudience::asUserPrefers), {}, {});
    }
}

void setNumber(std::vector<std::byte>& movie, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        movie[offset + i] = static_cast<std::byte>(value >> (24 - 8 * i));
    }
}

/// The offset of the content of a type's n-th box.
std::size_t findContent(const std::vector<std::byte>& movie, std::string_view type, int skip) {
    const auto name = std::as_bytes(std::span(type));
    auto from = movie.begin();
    for (;; --skip) {
        from = std::search(from, movie.end(), name.begin(), name.end());
        EXPECT_NE(from, movie.end());
        from += 4;
        if (skip == 0) {
            return static_cast<std::size_t>(from - movie.begin());
        }
    }
}

std::int64_t durationOf(const std::vector<std::byte>& movie) {
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    return ffmpeg::FfmpegToolkit(files).openRecording("movie.mov")->duration().inUnitsOf(48000);
}

/// Frames of each track in a movie's second fragment: ten seconds, in whole packets.
constexpr std::int64_t secondFragment = 528'384 - 48'128;

/// In frames, summed over all tracks.
std::int64_t gapsIn(const std::vector<std::byte>& movie) {
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    const media::MovieScan scan = media::openMovie(files, "movie.mov")->scan;
    std::int64_t gaps = 0;
    std::vector<std::int64_t> ends(scan.tracks.size());
    for (std::size_t index = 0; index < scan.fragments.size(); ++index) {
        const auto fragment =
            media::readFragment(*files.open("movie.mov"), scan.fragments[index], scan.tracks);
        for (const media::TrackFragment& part : fragment.parts) {
            gaps += scan.startsOf(index)[part.track] - ends[part.track];
            ends[part.track] = scan.startsOf(index)[part.track];
            for (const media::PacketPlace& packet : part.packets) {
                ends[part.track] += packet.duration;
            }
        }
    }
    return gaps;
}

TEST(DamagedMovie, anInconsistentFragmentIsAGap) {
    const auto movie = recordMovie(12 * second, tone(440, 0.5F));
    ASSERT_EQ(durationOf(movie), 12 * second);

    struct Case {
        const char* box;
        int skip; // boxes of the first fragment
        std::size_t field;
        std::uint32_t value;
    };

    const std::vector<Case> cases{
        {"tfdt", 2, 4, 7},          // not where the track ended
        {"tfhd", 2, 4, 9},          // unknown track
        {"trun", 2, 4, 0x7fffffff}, // more packets than described
        {"trun", 2, 8, 0},          // packets before the content
        {"trun", 2, 8, 0x10000000}, // packets after it
        {"trun", 2, 12, 0},         // an empty packet
        {"trun", 2, 12, 0x00ffffff} // a huge packet
    };
    for (const Case& test : cases) {
        auto damaged = movie;
        setNumber(damaged, findContent(damaged, test.box, test.skip) + test.field, test.value);
        EXPECT_EQ(durationOf(damaged), 12 * second) << test.box << " " << test.field;
        EXPECT_EQ(gapsIn(damaged), 2 * secondFragment) << test.box << " " << test.field;
    }
}

TEST(DamagedMovie, aFragmentWithoutPacketsIsAGap) {
    auto movie = recordMovie(12 * second, tone(440, 0.5F));
    for (const int track : {2, 3}) {
        setNumber(movie, findContent(movie, "trun", track) + 4, 0);
    }
    EXPECT_EQ(durationOf(movie), 12 * second);
    EXPECT_EQ(gapsIn(movie), 2 * secondFragment);
}

/// Four-byte packets of 1024 frames in the first track, each at an offset in its fragment's
/// content.
struct MadeUpPart {
    std::int64_t start = 0;
    std::vector<std::uint32_t> offsets;
};

void writeParts(media::BoxWriter& movie, const std::vector<MadeUpPart>& parts,
                std::size_t contentOffset) {
    movie.box("moof", [&] {
        for (const MadeUpPart& part : parts) {
            movie.box("traf", [&] {
                movie.fullBox("tfhd", 0x20018, [&] {
                    movie.u32(1);
                    movie.u32(media::packetFrames);
                    movie.u32(4);
                });
                movie.fullBox("tfdt", 0,
                              [&] { movie.u32(static_cast<std::uint64_t>(part.start)); });
                for (const std::uint32_t offset : part.offsets) {
                    movie.fullBox("trun", 1, [&] {
                        movie.u32(1);
                        movie.u32(contentOffset + offset);
                    });
                }
            });
        }
    });
}

std::vector<std::byte> makeFragment(const std::vector<MadeUpPart>& parts) {
    media::BoxWriter description;
    writeParts(description, parts, 0);
    media::BoxWriter fragment;
    writeParts(fragment, parts, description.take().size() + 8);
    fragment.box("mdat", [&] { fragment.zeros(16); });
    return fragment.take();
}

// Otherwise a few bytes could name far more packets than memory holds.
TEST(DamagedMovie, aFragmentThatNamesItsBytesTwiceEndsTheMovie) {
    auto movie = recordMovie(12 * second, silence());
    movie.resize(topBoxes(movie)[3].end);
    ASSERT_EQ(durationOf(movie), 48128);
    constexpr std::int64_t next = 48128 + media::primingFrames;

    struct Case {
        const char* name;
        std::vector<MadeUpPart> parts;
        std::int64_t duration;
    };

    const std::vector<Case> cases{
        {"whole", {{next, {0, 4, 12}}}, 48128 + (3 * media::packetFrames)},
        {"one packet twice", {{next, {0, 0}}}, 48128},
        {"overlapping packets", {{next, {0, 3}}}, 48128},
        {"packets in another order", {{next, {4, 0}}}, 48128},
        {"one track twice", {{next, {0}}, {next + media::packetFrames, {4}}}, 48128},
    };
    for (const Case& test : cases) {
        auto damaged = movie;
        const auto fragment = makeFragment(test.parts);
        damaged.insert(damaged.end(), fragment.begin(), fragment.end());
        EXPECT_EQ(durationOf(damaged), test.duration) << test.name;
    }
}

TEST(DamagedMovie, aPacketThatCannotBeDecodedIsSilent) {
    auto movie = recordMovie(2 * second, tone(440, 0.5F));
    const auto boxes = topBoxes(movie);
    std::ranges::fill(movie.begin() + static_cast<std::ptrdiff_t>(boxes[3].offset + 2000),
                      movie.begin() + static_cast<std::ptrdiff_t>(boxes[3].offset + 4000),
                      std::byte{0xff});
    EXPECT_NO_THROW(readAll(movie));
}

TEST(DamagedMovie, anyDamageIsReadToTheEndOrRefused) {
    const auto movie = recordMovie(3 * second, tone(440, 0.5F));
    std::mt19937 random(42);
    for (int round = 0; round < 300; ++round) {
        auto damaged = movie;
        // Mostly in the descriptions, where it matters.
        const std::size_t reach = round % 3 == 0 ? damaged.size() : 2500;
        for (int i = 0; i < 1 + (round % 8); ++i) {
            damaged[random() % reach] = static_cast<std::byte>(random());
        }
        try {
            readAll(damaged);
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string_view(error.what()), "");
        }
    }
}

} // namespace
} // namespace vantoro::testing
