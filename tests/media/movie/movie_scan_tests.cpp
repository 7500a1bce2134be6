// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/movie_scan.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

using FileBytes = std::vector<std::byte>;
using Writing = std::function<void(BoxWriter&)>;

MovieScan scanOf(const FileBytes& movie) {
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    return scanMovie(*files.open("movie.mov"));
}

bool isRefused(const FileBytes& movie) {
    try {
        scanOf(movie);
    } catch (const DamagedMovie&) {
        return true;
    }
    return false;
}

FileBytes operator+(FileBytes first, const FileBytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

struct MadeUpTrack {
    std::uint32_t id = 1;
    std::uint32_t version = 0;
    const char* kind = "soun";
    std::uint32_t timescale = 48000;
};

void writeTrack(BoxWriter& writer, const MadeUpTrack& track) {
    const std::uint32_t version = track.version << 24U | 0x00FFFFFFU; // unused flags
    const std::size_t times = track.version == 0 ? 8 : 16;
    writer.box("trak", [&] {
        writer.fullBox("tkhd", version, [&] {
            writer.zeros(times);
            writer.u32(track.id);
        });
        writer.box("mdia", [&] {
            writer.fullBox("mdhd", version, [&] {
                writer.zeros(times);
                writer.u32(track.timescale);
            });
            writer.fullBox("hdlr", 0, [&] {
                writer.zeros(4);
                writer.text(track.kind);
            });
            writer.box("minf", [&] { writer.u8(track.id + 1); });
        });
    });
}

FileBytes headerOf(const Writing& content) {
    BoxWriter writer;
    writer.box("moov", [&] { content(writer); });
    return writer.take();
}

FileBytes headerOf(const std::vector<MadeUpTrack>& tracks) {
    return headerOf([&](BoxWriter& writer) {
        for (const MadeUpTrack& track : tracks) {
            writeTrack(writer, track);
        }
    });
}

struct MadeUpPart {
    std::uint32_t track = 1;
    std::uint64_t start = 0;
    std::vector<std::uint32_t> durations;
};

/// A fragment of packets of one byte.
FileBytes fragmentOf(const std::vector<MadeUpPart>& parts) {
    const auto describe = [&](std::uint32_t content) {
        BoxWriter writer;
        writer.box("moof", [&] {
            for (const MadeUpPart& part : parts) {
                writer.box("traf", [&] {
                    writer.fullBox("tfhd", 0x10, [&] {
                        writer.u32(part.track);
                        writer.u32(1);
                    });
                    writer.fullBox("tfdt", 0, [&] { writer.u32(part.start); });
                    writer.fullBox("trun", 0x101, [&] {
                        writer.u32(part.durations.size());
                        writer.u32(content);
                        for (const std::uint32_t duration : part.durations) {
                            writer.u32(duration);
                        }
                    });
                });
            }
        });
        return writer.take();
    };
    BoxWriter content;
    content.box("mdat", [&] { content.zeros(8); });
    const auto size = static_cast<std::uint32_t>(describe(0).size());
    return describe(size + 8) + content.take();
}

TEST(MovieScan, readsEachTracksHeader) {
    for (const std::uint32_t version : {0U, 1U}) {
        const MovieScan scan = scanOf(headerOf([&](BoxWriter& writer) {
            writer.box("mvhd", [&] { writer.zeros(100); });
            writeTrack(writer, {.id = 4, .version = version});
            writeTrack(writer, {.id = 9, .version = version, .kind = "vide", .timescale = 600});
            writer.box("mvex", [&] {
                writer.box("mehd", [&] { writer.zeros(8); });
                for (const std::uint32_t id : {9U, 4U, 5U}) {
                    writer.fullBox("trex", 0, [&] {
                        writer.u32(id);
                        writer.u32(1);
                        writer.u32(1000 + id);
                        writer.u32(2000 + id);
                    });
                }
            });
        }));
        ASSERT_EQ(scan.tracks.size(), 2U);
        EXPECT_EQ(scan.tracks[0].id, 4U);
        EXPECT_TRUE(scan.tracks[0].isAudio);
        EXPECT_EQ(scan.tracks[0].timescale, 48000U);
        EXPECT_EQ(scan.tracks[0].defaultDuration, 1004U);
        EXPECT_EQ(scan.tracks[0].defaultSize, 2004U);
        EXPECT_EQ(scan.tracks[0].information, FileBytes{std::byte{5}});
        EXPECT_EQ(scan.tracks[1].id, 9U);
        EXPECT_FALSE(scan.tracks[1].isAudio);
        EXPECT_EQ(scan.tracks[1].timescale, 600U);
        EXPECT_EQ(scan.tracks[1].defaultDuration, 1009U);
        EXPECT_EQ(scan.tracks[1].defaultSize, 2009U);
    }
}

TEST(MovieScan, hasNoDefaultsIfTheHeaderHasNone) {
    const MovieScan scan = scanOf(headerOf({{.id = 1}}));
    EXPECT_EQ(scan.tracks.at(0).defaultDuration, 0U);
    EXPECT_EQ(scan.tracks.at(0).defaultSize, 0U);
    EXPECT_EQ(scan.ends, std::vector<std::int64_t>{0});
    EXPECT_TRUE(scan.fragments.empty());
    const MovieScan empty = scanOf(headerOf([](BoxWriter& writer) { writer.box("trak", [] {}); }));
    EXPECT_EQ(empty.tracks.at(0).id, 0U);
    EXPECT_EQ(empty.tracks.at(0).timescale, 0U);
    EXPECT_FALSE(empty.tracks.at(0).isAudio);
}

TEST(MovieScan, refusesSampleRatesOtherThan48000Hertz) {
    EXPECT_TRUE(isRefused(headerOf({{.timescale = 44100}})));
    EXPECT_FALSE(isRefused(headerOf({{.kind = "vide", .timescale = 44100}})));
}

TEST(MovieScan, refusesTracksThatCannotBeToldApart) {
    EXPECT_FALSE(isRefused(headerOf({{.id = 1}, {.id = 2}})));
    EXPECT_TRUE(isRefused(headerOf({{.id = 1}, {.id = 2}, {.id = 1}})));
    std::vector<MadeUpTrack> many;
    for (std::uint32_t id = 1; id <= 16; ++id) {
        many.push_back({.id = id});
    }
    EXPECT_FALSE(isRefused(headerOf(many)));
    many.push_back({.id = 17});
    EXPECT_TRUE(isRefused(headerOf(many)));
}

TEST(MovieScan, findsTheHeaderAmongTheFirstSixteenBoxes) {
    BoxWriter writer;
    for (int i = 0; i < 15; ++i) {
        writer.box("free", [] {});
    }
    const FileBytes some = writer.take();
    const FileBytes header = headerOf({{.id = 1}});
    const MovieScan scan = scanOf(some + header);
    EXPECT_EQ(scan.headerEnd, some.size() + header.size());
    EXPECT_EQ(scan.fragmentsEnd, scan.headerEnd);
    BoxWriter another;
    another.box("free", [] {});
    EXPECT_TRUE(isRefused(another.take() + some + header));
    for (const FileBytes& movie : {some, FileBytes{}}) {
        std::string complaint;
        try {
            scanOf(movie);
        } catch (const DamagedMovie& damage) {
            complaint = damage.what();
        }
        EXPECT_EQ(complaint, "The recording file is damaged: it has no header.");
    }
}

TEST(MovieScan, readsHeadersOfUpToAMebibyte) {
    const auto headerOfSize = [](std::size_t size) {
        return headerOf(
            [&](BoxWriter& writer) { writer.box("free", [&] { writer.zeros(size - 8); }); });
    };
    EXPECT_FALSE(isRefused(headerOfSize(1U << 20U)));
    EXPECT_TRUE(isRefused(headerOfSize((1U << 20U) + 1)));
}

TEST(MovieScan, givesEachWholeFragmentsOffsetAndStarts) {
    const FileBytes header = headerOf({{.id = 1}, {.id = 2}});
    const FileBytes first = fragmentOf({{1, 0, {1024, 1024}}, {2, 0, {1024}}});
    const FileBytes second = fragmentOf({{2, 1024, {1024, 1024}}, {1, 2048, {1024, 700}}});
    const MovieScan scan = scanOf(header + first + second);
    EXPECT_EQ(scan.fragments,
              (std::vector<std::uint64_t>{header.size(), header.size() + first.size()}));
    EXPECT_EQ(scan.starts, (std::vector<std::int64_t>{0, 0, 2048, 1024}));
    EXPECT_EQ(scan.ends, (std::vector<std::int64_t>{2048 + 1724, 3072}));
    EXPECT_EQ(scan.fragmentsEnd, header.size() + first.size() + second.size());
    EXPECT_EQ(scan.startsOf(1)[0], 2048);
    EXPECT_EQ(scan.startsOf(1)[1], 1024);
}

TEST(MovieScan, endsBeforeAnInconsistentFragment) {
    const FileBytes header = headerOf({{.id = 1}, {.id = 2}});
    const FileBytes first = fragmentOf({{1, 0, {1024}}});

    struct Case {
        const char* what;
        std::vector<MadeUpPart> parts;
        std::size_t fragments;
    };

    const Case table[] = {
        {"goes on", {{1, 1024, {1024}}}, 2},
        {"leaves a gap", {{1, 1025, {1024}}}, 1},
        {"overlaps", {{1, 1023, {1024}}}, 1},
        {"ends short", {{1, 1024, {1024, 1}}}, 2},
        {"goes on behind a short packet", {{1, 1024, {1023, 1024}}}, 1},
        {"has too long a packet", {{1, 1024, {1025}}}, 1},
        {"has no packets", {{1, 1024, {}}}, 1},
        {"has no packets of one track", {{1, 1024, {}}, {2, 0, {1024}}}, 2},
        {"has nothing", {}, 1},
        {"adds up in one track only", {{2, 0, {1024}}, {1, 0, {1024}}}, 1},
    };
    for (const auto& [what, parts, fragments] : table) {
        const MovieScan scan = scanOf(header + first + fragmentOf(parts));
        EXPECT_EQ(scan.fragments.size(), fragments) << what;
        EXPECT_EQ(scan.starts.size(), 2 * fragments) << what;
        if (fragments == 1) {
            EXPECT_EQ(scan.ends, (std::vector<std::int64_t>{1024, 0})) << what;
        }
    }
}

TEST(MovieScan, takesNothingAfterATracksEnd) {
    const FileBytes movie = headerOf({{.id = 1}, {.id = 2}}) + fragmentOf({{1, 0, {1024, 500}}});
    EXPECT_EQ(scanOf(movie + fragmentOf({{1, 1524, {1024}}})).fragments.size(), 1U);
    EXPECT_EQ(scanOf(movie + fragmentOf({{2, 0, {1024}}})).fragments.size(), 2U);
}

TEST(MovieScan, continuesWhereItEndedWhenTheFileGrows) {
    const FileBytes movie = headerOf({{.id = 1}}) + fragmentOf({{1, 0, {1024}}});
    const FileBytes longer = movie + fragmentOf({{1, 1024, {1024, 500}}});
    const FileBytes tooLong = longer + fragmentOf({{1, 2548, {1024}}});
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    MovieScan scan = scanMovie(*files.open("movie.mov"));
    for (const FileBytes& grown : {longer, tooLong}) {
        files.put("movie.mov", grown);
        continueScan(*files.open("movie.mov"), scan);
        EXPECT_EQ(scan.fragments.size(), 2U);
        EXPECT_EQ(scan.ends, std::vector<std::int64_t>{2548});
        EXPECT_EQ(scan.fragmentsEnd, longer.size());
    }
}

} // namespace
} // namespace vantoro::testing
