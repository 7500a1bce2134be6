// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "media/boxes/box_search.h"
#include "media/codec/aac.h"
#include "media/movie/fragment_checksum.h"
#include "media/movie/movie.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

using MovieBytes = std::vector<std::byte>;

/// The offsets of a fragment's boxes.
struct Place {
    std::size_t begin = 0;
    std::size_t content = 0;
    std::size_t checksum = 0;
    std::size_t end = 0;
};

std::vector<Place> placesIn(const MovieBytes& movie) {
    std::vector<Place> places;
    for (const TopBox& box : topBoxes(movie)) {
        if (box.type == "moof") {
            places.push_back({.begin = box.offset, .content = box.end});
        } else if (box.type == "mdat") {
            places.back().checksum = box.end;
        } else if (box.type == "uuid") {
            places.back().end = box.end;
        }
    }
    return places;
}

MovieBytes part(const MovieBytes& bytes, std::size_t begin, std::size_t end) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(begin),
            bytes.begin() + static_cast<std::ptrdiff_t>(end)};
}

void insert(MovieBytes& bytes, std::size_t offset, const MovieBytes& inserted) {
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(offset), inserted.begin(),
                 inserted.end());
}

void overwrite(MovieBytes& bytes, std::size_t offset, const MovieBytes& by) {
    std::ranges::copy(by, bytes.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// Two tracks of three seconds in fragments of half a second, to be damaged.
class DamageScan : public ::testing::Test {
protected:
    const MovieBytes movie = record();
    const std::vector<Place> places = placesIn(movie);
    const std::shared_ptr<const Movie> whole = open(movie);

    static MovieBytes record() {
        MemoryFileSystem files;
        MovieRecording recording(files, "movie.mov", {systemTrack, microphoneTrack},
                                 {.first = {1, 4}, .others = {1, 2}});
        EXPECT_TRUE(recording.appendAll(0, 3 * second, tone(440, 0.1F)));
        recording.finish();
        return files.contentOf("movie.mov");
    }

    static std::shared_ptr<const Movie> open(const MovieBytes& bytes) {
        MemoryFileSystem files;
        files.put("movie.mov", bytes);
        return openMovie(files, "movie.mov");
    }

    /// Scans the damaged movie, and expects the whole one's fragments except for some.
    /// `inserted`: how many bytes were inserted before the fragment of that number.
    struct Expectation {
        std::set<std::size_t> lost;
        std::size_t insertedAt = 1000;
        std::size_t inserted = 0;
    };

    void expect(const MovieBytes& damaged, const Expectation& expected, const std::string& what) {
        const auto found = open(damaged);
        std::vector<std::uint64_t> fragments;
        std::vector<std::int64_t> starts;
        for (std::size_t index = 0; index < places.size(); ++index) {
            if (!expected.lost.contains(index)) {
                fragments.push_back(places[index].begin +
                                    (index < expected.insertedAt ? 0 : expected.inserted));
                const auto of = whole->scan.startsOf(index);
                starts.insert(starts.end(), of.begin(), of.end());
            }
        }
        ASSERT_EQ(found->scan.fragments, fragments) << what;
        ASSERT_EQ(found->scan.starts, starts) << what;
        if (!expected.lost.contains(places.size() - 1)) {
            ASSERT_EQ(found->scan.ends, whole->scan.ends) << what;
        }
        ASSERT_FALSE(isWhole(*found)) << what;
    }

    /// Expects all fragments, or all but one, and that the movie is not whole.
    void expectAllBut(const MovieBytes& damaged, std::size_t fragment, const std::string& what) {
        const bool isTaken = open(damaged)->scan.fragments.size() == places.size();
        expect(damaged, {.lost = isTaken ? std::set<std::size_t>() : std::set{fragment}}, what);
    }

    /// Updates the checksum.
    MovieBytes withTime(std::size_t fragment, std::uint64_t time) const {
        MovieBytes changed = movie;
        const auto name = std::as_bytes(std::span("tfdt", 4));
        const auto begin = changed.begin() + static_cast<std::ptrdiff_t>(places[fragment].begin);
        const auto found = std::search(begin, changed.end(), name.begin(), name.end());
        EXPECT_EQ(found[4], std::byte(1)); // the version with 64-bit times
        for (int i = 0; i < 8; ++i) {
            found[8 + i] = static_cast<std::byte>(time >> static_cast<unsigned>(56 - 8 * i));
        }
        const Place& place = places[fragment];
        overwrite(
            changed, place.checksum,
            checksumBox(std::span(changed).subspan(place.begin, place.checksum - place.begin)));
        return changed;
    }
};

TEST_F(DamageScan, undamagedMovieIsWhole) {
    ASSERT_GE(places.size(), 6U);
    EXPECT_EQ(whole->scan.fragments.size(), places.size());
    EXPECT_TRUE(isWhole(*whole));
    // Unfinished, and with a truncated index.
    EXPECT_TRUE(isWhole(*open(part(movie, 0, places.back().end))));
    EXPECT_TRUE(isWhole(*open(part(movie, 0, places.back().end + 20))));
}

TEST_F(DamageScan, anyFlippedBitOfAFragmentsHeadersCostsThatFragmentAtMost) {
    MovieBytes damaged = movie;
    for (const std::size_t fragment : {std::size_t{0}, std::size_t{3}}) {
        const Place& place = places[fragment];
        for (std::size_t offset = place.begin; offset < place.end; ++offset) {
            if (offset == place.content + 8) {
                offset = place.checksum; // skip to the boxes after the packets
            }
            const unsigned bit = 1U << (offset % 8);
            damaged[offset] ^= static_cast<std::byte>(bit);
            expectAllBut(damaged, fragment, "bit of byte " + std::to_string(offset - place.begin));
            damaged[offset] ^= static_cast<std::byte>(bit);
        }
    }
}

TEST_F(DamageScan, eachBoxOfAFragmentMayHaveAnotherSizeOrName) {
    for (const char* name : {"moof", "mfhd", "traf", "tfhd", "tfdt", "trun", "mdat", "uuid"}) {
        const auto letters = std::as_bytes(std::span(name, 4));
        const auto begin = movie.begin() + static_cast<std::ptrdiff_t>(places[3].begin);
        const auto found = std::search(begin, movie.end(), letters.begin(), letters.end());
        const auto field = static_cast<std::size_t>(found - movie.begin()) - 4;
        for (std::size_t byte = 0; byte < 8; ++byte) {
            for (const unsigned value : {0x00U, 0x01U, 0x7FU, 0xFFU}) {
                MovieBytes damaged = movie;
                damaged[field + byte] = static_cast<std::byte>(value);
                if (damaged != movie) {
                    expectAllBut(damaged, 3, std::string(name) + " " + std::to_string(byte));
                }
            }
        }
    }
}

TEST_F(DamageScan, zeroedBlockCostsTheFragmentsThatItTouchesAtMost) {
    constexpr std::size_t block = 4096;
    for (std::size_t begin = places[1].begin; begin + block < places[5].begin; begin += 1111) {
        MovieBytes damaged = movie;
        std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(begin), block, std::byte(0));
        const auto found = open(damaged);
        for (std::size_t index = 0; index < places.size(); ++index) {
            const bool isTouched = places[index].begin < begin + block && places[index].end > begin;
            const auto taken = std::ranges::find(found->scan.fragments, places[index].begin);
            EXPECT_TRUE(isTouched || taken != found->scan.fragments.end()) << begin << " " << index;
        }
        EXPECT_EQ(found->scan.ends, whole->scan.ends) << begin;
        EXPECT_FALSE(isWhole(*found)) << begin;
    }
}

TEST_F(DamageScan, noiseThatLooksLikeFragmentsIsIgnored) {
    std::mt19937 random(1);
    for (int round = 0; round < 20; ++round) {
        MovieBytes damaged = movie;
        const Place& place = places[3];
        for (std::size_t offset = place.begin; offset < place.end; ++offset) {
            damaged[offset] = static_cast<std::byte>(random());
        }
        // Plausible sizes, and names in the right places.
        for (std::size_t offset = place.begin; offset + 200 < place.end; offset += 100) {
            const std::size_t size = 8 + (random() % 90);
            for (std::size_t i = 0; i < 4; ++i) {
                damaged[offset + i] = static_cast<std::byte>(size >> (24 - (8 * i)));
                damaged[offset + 4 + i] = static_cast<std::byte>("moof"[i]);
                damaged[offset + size + 4 + i] = static_cast<std::byte>("mdat"[i]);
            }
        }
        expect(damaged, {.lost = {3}}, "round " + std::to_string(round));
    }
}

TEST_F(DamageScan, damagedFragmentsMayBeSeveralAndTheFirst) {
    const std::vector<std::set<std::size_t>> cases{{0}, {0, 1}, {2, 3, 4}, {1, 3, 5}, {0, 2, 4}};
    for (const auto& lost : cases) {
        MovieBytes damaged = movie;
        for (const std::size_t index : lost) {
            damaged[places[index].begin + 5] = std::byte('x');
        }
        expect(damaged, {.lost = lost}, "first of them " + std::to_string(*lost.begin()));
    }
}

TEST_F(DamageScan, duplicateFragmentIsTakenOnce) {
    for (const std::size_t fragment : {1U, 3U}) {
        MovieBytes damaged = movie;
        const MovieBytes copy = part(movie, places[fragment].begin, places[fragment].end);
        insert(damaged, places[fragment].end, copy);
        expect(damaged, {.lost = {}, .insertedAt = fragment + 1, .inserted = copy.size()}, "twice");
    }
}

TEST_F(DamageScan, fragmentWhoseTimeGoesBackwardsIsLeftOut) {
    const auto time = static_cast<std::uint64_t>(whole->scan.startsOf(3)[0]);
    expect(withTime(3, time - packetFrames), {.lost = {3}}, "a packet before");
    expect(withTime(3, 0), {.lost = {3}}, "from the beginning");
    MovieBytes damaged = movie;
    const MovieBytes earlier = part(movie, places[1].begin, places[1].end);
    damaged.erase(damaged.begin() + static_cast<std::ptrdiff_t>(places[3].begin),
                  damaged.begin() + static_cast<std::ptrdiff_t>(places[3].end));
    insert(damaged, places[3].begin, earlier);
    const auto found = open(damaged);
    EXPECT_EQ(found->scan.fragments.size(), places.size() - 1);
    EXPECT_EQ(found->scan.ends, whole->scan.ends);
}

TEST_F(DamageScan, gapTooLongForTheSkippedBytesIsRefused) {
    const auto time = static_cast<std::uint64_t>(whole->scan.startsOf(3)[0]);
    constexpr std::uint64_t thousandYears = 1000ULL * 366 * 24 * 3600 * second / 1024 * 1024;
    for (const std::uint64_t later :
         {std::uint64_t{packetFrames}, std::uint64_t{7}, thousandYears, ~std::uint64_t{0} - time}) {
        expect(withTime(3, time + later), {.lost = {3}}, "later by " + std::to_string(later));
        // Nor after a damaged fragment.
        MovieBytes damaged = withTime(3, time + later);
        damaged[places[2].begin + 5] = std::byte('x');
        if (later > packetFrames) {
            expect(damaged, {.lost = {2, 3}}, "behind damage, by " + std::to_string(later));
        }
    }
}

TEST_F(DamageScan, afterDamageAFragmentNeedsAMatchingChecksum) {
    MovieBytes damaged = movie;
    damaged[places[2].begin + 5] = std::byte('x');
    damaged[places[3].content + 100] ^= std::byte(1);
    damaged[places[4].checksum + 10] ^= std::byte(1); // not a checksum any more
    expect(damaged, {.lost = {2, 3, 4}}, "");
}

TEST_F(DamageScan, wrongPacketCostsNoFragment) {
    MovieBytes damaged = movie;
    damaged[places[3].content + 100] ^= std::byte(1);
    expect(damaged, {}, "");
}

TEST_F(DamageScan, movieWithATornLastFragmentIsNotWhole) {
    for (const std::size_t size : {places[4].begin + 3, places[4].begin + 50,
                                   places[4].content + 500, places[4].checksum + 3}) {
        const auto found = open(part(movie, 0, size));
        const std::size_t count = size > places[4].checksum ? 5 : 4;
        EXPECT_EQ(found->scan.fragments.size(), count) << size;
        EXPECT_FALSE(isWhole(*found)) << size;
    }
}

TEST_F(DamageScan, movieThatStillGrowsIsNotTakenForDamaged) {
    MemoryFileSystem files;
    MovieBytes growing = movie;
    std::fill(growing.begin() + static_cast<std::ptrdiff_t>(places[3].begin),
              growing.begin() + static_cast<std::ptrdiff_t>(places[3].end), std::byte(0));
    files.put("movie.mov", growing);
    MovieScan scan = openGrowingMovie(files, "movie.mov")->scan;
    EXPECT_EQ(scan.fragments.size(), 3U);
    continueScan(*files.open("movie.mov"), scan);
    EXPECT_EQ(scan.fragments.size(), 3U);
    files.put("movie.mov", movie);
    continueScan(*files.open("movie.mov"), scan);
    EXPECT_EQ(scan.fragments, whole->scan.fragments);
    EXPECT_EQ(scan.skipped, 0U);
}

TEST_F(DamageScan, searchIsLimitedToItsReach) {
    MemoryFileSystem files;
    MovieBytes damaged = movie;
    damaged[places[2].begin + 5] = std::byte('x');
    files.put("movie.mov", damaged);
    const auto file = files.open("movie.mov");
    const std::size_t distance = places[3].begin - places[2].begin;
    for (const std::size_t reach : {distance + 7, distance + 8}) {
        MovieScan scan = scanMovie(*file);
        scanAfterDamage(*file, scan, reach);
        EXPECT_EQ(scan.fragments.size(), reach > distance + 7 ? places.size() - 1 : 2) << reach;
    }
}

TEST(BoxSearch, findsNamesAcrossReadBoundaries) {
    constexpr std::size_t window = 256U << 10U;
    MemoryFileSystem files;
    MovieBytes bytes(3 * window);
    std::vector<std::uint64_t> expected;
    for (std::size_t place = window - 12; place < window + 12; place += 5) {
        expected.push_back(place);
    }
    expected.push_back((3 * window) - 8);
    for (const std::uint64_t place : expected) {
        overwrite(bytes, place + 4,
                  {std::byte('m'), std::byte('o'), std::byte('o'), std::byte('f')});
    }
    files.put("file", bytes);
    const auto file = files.open("file");
    BoxSearch search(*file, "moof");
    std::vector<std::uint64_t> found;
    for (auto place = search.next(0, bytes.size()); place;
         place = search.next(*place + 1, bytes.size())) {
        found.push_back(*place);
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(search.next(expected.back(), bytes.size() - 1), std::nullopt);
}

} // namespace
} // namespace vantoro::testing
