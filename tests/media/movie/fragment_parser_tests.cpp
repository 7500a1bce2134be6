// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/fragment_parser.h"

#include <gtest/gtest.h>

#include <functional>
#include <string_view>
#include <tuple>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"
#include "media/movie/fragment_checksum.h"
#include "media/movie/movie_scan.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace media;

using FileBytes = std::vector<std::byte>;
using Writing = std::function<void(BoxWriter&)>;
using Place = std::tuple<std::uint64_t, std::uint32_t, std::uint32_t>; // relative to the content

constexpr std::size_t before = 5; // bytes of the file before the fragment

FileBytes written(const Writing& write) {
    BoxWriter writer;
    write(writer);
    return writer.take();
}

/// A fragment of parts of tracks, its packets' content, and what follows. `parts` is told where the
/// content lies, from the fragment's beginning on.
class MadeUpFragment {
public:
    using Parts = std::function<void(BoxWriter&, std::uint32_t content)>;

    explicit MadeUpFragment(const Parts& parts, std::size_t contentSize = 100,
                            const char* type = "moof", const char* contentType = "mdat") {
        const auto description = [&](std::uint32_t content) {
            return written(
                [&](BoxWriter& writer) { writer.box(type, [&] { parts(writer, content); }); });
        };
        const auto size = static_cast<std::uint32_t>(description(0).size());
        file_.resize(before);
        append(description(size + 8));
        content_ = before + size + 8;
        append(written([&](BoxWriter& writer) {
            writer.box(contentType, [&] { writer.zeros(contentSize); });
        }));
    }

    void append(const FileBytes& bytes) { file_.insert(file_.end(), bytes.begin(), bytes.end()); }

    std::size_t size() const { return file_.size(); }

    FileBytes bytes() const { return {file_.begin() + before, file_.end()}; }

    Fragment read() const {
        const std::vector<TrackHeader> tracks{
            {.id = 5,
             .isAudio = true,
             .timescale = 48000,
             .defaultDuration = 1024,
             .defaultSize = 10,
             .information = {}},
            {.id = 6,
             .isAudio = false,
             .timescale = 600,
             .defaultDuration = 3,
             .defaultSize = 3,
             .information = {}},
            {.id = 7,
             .isAudio = true,
             .timescale = 48000,
             .defaultDuration = 512,
             .defaultSize = 20,
             .information = {}},
            // not in the movie
            {.id = 8,
             .isAudio = true,
             .timescale = 48000,
             .defaultDuration = 1024,
             .defaultSize = 10,
             .information = {}},
        };
        MemoryFileSystem files;
        files.put("movie.mov", file_);
        return readFragment(*files.open("movie.mov"), before, std::span(tracks).first(3));
    }

    bool isRefused() const {
        try {
            read();
        } catch (const DamagedMovie&) {
            return true;
        }
        return false;
    }

    /// The only part's packets, relative to the content.
    std::vector<Place> packets() const {
        std::vector<Place> places;
        const Fragment fragment = read();
        for (const PacketPlace& packet : fragment.parts.at(0).packets) {
            places.emplace_back(packet.offset - content_, packet.size, packet.duration);
        }
        return places;
    }

private:
    FileBytes file_;
    std::uint64_t content_ = 0;
};

void track(BoxWriter& writer, std::uint32_t id = 5, std::uint32_t flags = 0) {
    writer.fullBox("tfhd", flags, [&] { writer.u32(id); });
}

void start(BoxWriter& writer, std::uint64_t frame = 0) {
    writer.fullBox("tfdt", 0x00FFFFFF, [&] { writer.u32(frame); }); // version 0, unused flags
}

/// Packets with default fields, from an offset on.
void packets(BoxWriter& writer, std::uint32_t offset, std::uint32_t count) {
    writer.fullBox("trun", 1, [&] {
        writer.u32(count);
        writer.u32(offset);
    });
}

/// One part of the first track.
MadeUpFragment fragmentOf(const MadeUpFragment::Parts& rest, std::size_t contentSize = 100) {
    return MadeUpFragment(
        [&](BoxWriter& writer, std::uint32_t content) {
            writer.box("traf", [&] {
                track(writer);
                start(writer);
                rest(writer, content);
            });
        },
        contentSize);
}

TEST(FragmentParser, readsEachFieldThatTheFlagsAnnounce) {
    for (unsigned of = 0; of < 8; ++of) {         // fields of the track fragment
        for (unsigned has = 0; has < 32; ++has) { // fields of its runs
            const bool trackDuration = (of & 2U) != 0;
            const bool trackSize = (of & 4U) != 0;
            const MadeUpFragment fragment([&](BoxWriter& writer, std::uint32_t content) {
                const unsigned trackFlags =
                    ((of & 1U) != 0 ? 2U : 0U) | (trackDuration ? 8U : 0U) | (trackSize ? 16U : 0U);
                const unsigned rowFlags = 1U | ((has & 1U) != 0 ? 4U : 0U) | ((has & 30U) << 7U);
                writer.box("traf", [&] {
                    writer.fullBox("tfhd", trackFlags, [&] {
                        writer.u32(5);
                        for (const unsigned field : {1U, 2U, 4U}) {
                            if ((of & field) != 0) {
                                writer.u32(10 + field);
                            }
                        }
                    });
                    start(writer, 99);
                    writer.fullBox("trun", rowFlags, [&] {
                        writer.u32(2);
                        writer.u32(content + 1);
                        if ((has & 1U) != 0) {
                            writer.u32(77);
                        }
                        for (const unsigned packet : {20U, 21U}) {
                            for (const unsigned field : {2U, 4U, 8U, 16U}) {
                                if ((has & field) != 0) {
                                    writer.u32(packet + field);
                                }
                            }
                        }
                    });
                });
            });
            std::vector<Place> expected;
            std::uint64_t next = 1;
            for (const unsigned packet : {20U, 21U}) {
                const std::uint32_t duration = (has & 2U) != 0 ? packet + 2
                                               : trackDuration ? 12
                                                               : 1024;
                const std::uint32_t size = (has & 4U) != 0 ? packet + 4 : trackSize ? 14 : 10;
                expected.emplace_back(next, size, duration);
                next += size;
            }
            EXPECT_EQ(fragment.packets(), expected) << of << " " << has;
            EXPECT_EQ(fragment.read().parts[0].start, 99U);
        }
    }
}

TEST(FragmentParser, readsThePartOfEachAudioTrack) {
    MadeUpFragment fragment([](BoxWriter& writer, std::uint32_t content) {
        writer.box("mfhd", [&] { writer.zeros(8); });
        for (const std::uint32_t id : {7U, 6U, 5U}) {
            writer.box("traf", [&] {
                track(writer, id);
                writer.fullBox("tfdt", 1U << 24U, [&] { writer.u64(0x100000000U + id); });
                writer.box("free", [] {});
                packets(writer, content, 1);
            });
        }
    });
    const Fragment read = fragment.read();
    ASSERT_EQ(read.parts.size(), 2U);
    EXPECT_EQ(read.parts[0].track, 2U);
    EXPECT_EQ(read.parts[0].start, 0x100000007U);
    EXPECT_EQ(read.parts[0].packets.at(0).duration, 512U);
    EXPECT_EQ(read.parts[1].track, 0U);
    EXPECT_EQ(read.parts[1].start, 0x100000005U);
    EXPECT_EQ(read.contentEnd, fragment.size());
    EXPECT_EQ(read.end, fragment.size());
    EXPECT_FALSE(read.checksum);

    const auto checksum = checksumBox(fragment.bytes());
    fragment.append(checksum);
    EXPECT_EQ(fragment.read().contentEnd, read.end);
    EXPECT_EQ(fragment.read().end, read.end + checksum.size());
    Checksum sum;
    const FileBytes summed = fragment.bytes();
    sum.add(std::span(summed).first(summed.size() - checksum.size()));
    EXPECT_EQ(fragment.read().checksum, sum.value());
}

TEST(FragmentChecksum, isStoredInAStableFormat) {
    const std::string_view text = "123456789";
    FileBytes expected;
    for (const unsigned byte :
         {0x00U, 0x00U, 0x00U, 0x1CU, 0x75U, 0x75U, 0x69U, 0x64U, // a uuid
          0x5BU, 0x3EU, 0xA1U, 0x0CU, 0x77U, 0x42U, 0x4DU, 0xE9U, // ours
          0x9AU, 0x16U, 0xC8U, 0x21U, 0x0FU, 0xD4U, 0x63U, 0xB8U, //
          0x34U, 0x0BU, 0xC6U, 0xD9U}) { // the common CRC-32 of this text, inverted
        expected.push_back(static_cast<std::byte>(byte));
    }
    EXPECT_EQ(checksumBox(std::as_bytes(std::span(text))), expected);
}

TEST(FragmentParser, ignoresBoxesThatAreNotAChecksum) {
    MadeUpFragment fragment =
        fragmentOf([](BoxWriter& writer, std::uint32_t content) { packets(writer, content, 1); });
    const auto checksum = checksumBox(fragment.bytes());
    for (std::size_t wrong = 0; wrong < 24; ++wrong) {
        auto other = fragment;
        auto damaged = checksum;
        damaged[wrong] ^= std::byte{1};
        other.append(damaged);
        EXPECT_FALSE(other.read().checksum) << wrong;
        EXPECT_EQ(other.read().end, fragment.size());
    }
    auto cut = fragment;
    cut.append({checksum.begin(), checksum.end() - 1});
    EXPECT_FALSE(cut.read().checksum);
}

TEST(FragmentParser, continuesAfterTheLastPacketWithoutAnOffset) {
    const auto fragment = fragmentOf([](BoxWriter& writer, std::uint32_t content) {
        packets(writer, content + 4, 2);
        writer.fullBox("trun", 0, [&] { writer.u32(1); });
        packets(writer, content + 34, 1);
    });
    EXPECT_EQ(fragment.packets(),
              (std::vector<Place>{{4, 10, 1024}, {14, 10, 1024}, {24, 10, 1024}, {34, 10, 1024}}));
}

TEST(FragmentParser, refusesPacketsOutsideTheContent) {
    const auto refuses = [](int offset, std::uint32_t count, std::size_t contentSize) {
        return fragmentOf(
                   [&](BoxWriter& writer, std::uint32_t content) {
                       packets(writer, content + static_cast<std::uint32_t>(offset), count);
                   },
                   contentSize)
            .isRefused();
    };
    EXPECT_FALSE(refuses(0, 10, 100));
    EXPECT_TRUE(refuses(0, 10, 99));
    EXPECT_FALSE(refuses(90, 1, 100));
    EXPECT_TRUE(refuses(91, 1, 100));
    EXPECT_TRUE(refuses(101, 1, 100));
    EXPECT_TRUE(refuses(-1, 1, 100));
}

TEST(FragmentParser, refusesPacketsOfImpossibleSizes) {
    const auto refuses = [](std::uint32_t size) {
        return fragmentOf(
                   [&](BoxWriter& writer, std::uint32_t content) {
                       writer.fullBox("trun", 0x201, [&] {
                           writer.u32(1);
                           writer.u32(content);
                           writer.u32(size);
                       });
                   },
                   100000)
            .isRefused();
    };
    EXPECT_TRUE(refuses(0));
    EXPECT_FALSE(refuses(1));
    EXPECT_FALSE(refuses(65536));
    EXPECT_TRUE(refuses(65537));
}

TEST(FragmentParser, refusesMorePacketsThanAFragmentHas) {
    const auto refuses = [](std::uint32_t first, std::uint32_t second) {
        return fragmentOf(
                   [&](BoxWriter& writer, std::uint32_t content) {
                       packets(writer, content, first);
                       packets(writer, content + first * 10, second);
                   },
                   700000)
            .isRefused();
    };
    EXPECT_FALSE(refuses(65536, 0));
    EXPECT_FALSE(refuses(65000, 536));
    EXPECT_TRUE(refuses(65537, 0));
    EXPECT_TRUE(refuses(65000, 537));
}

TEST(FragmentParser, refusesPacketsThatOverlapOrAreOutOfOrder) {
    const auto refuses = [](std::uint32_t second) {
        return fragmentOf([&](BoxWriter& writer, std::uint32_t content) {
                   packets(writer, content + 20, 1);
                   packets(writer, content + second, 1);
               })
            .isRefused();
    };
    EXPECT_FALSE(refuses(30));
    EXPECT_TRUE(refuses(29));
    EXPECT_TRUE(refuses(0));
}

TEST(FragmentParser, refusesTracksThatAreDescribedTwiceOrIncompletely) {
    const auto refuses = [](const Writing& part, int times = 1) {
        return MadeUpFragment([&](BoxWriter& writer, std::uint32_t) {
                   for (int i = 0; i < times; ++i) {
                       writer.box("traf", [&] { part(writer); });
                   }
               })
            .isRefused();
    };
    const auto whole = [](BoxWriter& writer) {
        track(writer);
        start(writer);
    };
    EXPECT_FALSE(refuses(whole));
    EXPECT_TRUE(refuses(whole, 2)) << "a track twice";
    EXPECT_TRUE(refuses([](BoxWriter& writer) { track(writer); })) << "no start";
    EXPECT_TRUE(refuses([](BoxWriter& writer) { start(writer); })) << "no track";
    EXPECT_TRUE(refuses([](BoxWriter& writer) {
        track(writer, 8);
        start(writer);
    })) << "an unknown track";
    EXPECT_TRUE(refuses([](BoxWriter& writer) {
        track(writer, 5, 1);
        start(writer);
    })) << "packets somewhere else";
    EXPECT_TRUE(refuses([](BoxWriter& writer) {
        track(writer, 5);
        track(writer, 7);
        start(writer);
    })) << "two tracks in one";
    EXPECT_TRUE(refuses([](BoxWriter& writer) {
        start(writer);
        packets(writer, 0, 0);
        track(writer);
    })) << "packets of nobody";
}

TEST(FragmentParser, refusesOtherBoxes) {
    const auto none = [](BoxWriter&, std::uint32_t) {};
    EXPECT_FALSE(MadeUpFragment(none).isRefused());
    EXPECT_TRUE(MadeUpFragment(none, 100, "free").isRefused());
    EXPECT_TRUE(MadeUpFragment(none, 100, "moof", "free").isRefused());
}

TEST(FragmentParser, readsDescriptionsOfUpToAMebibyte) {
    const auto refuses = [](std::size_t size) {
        return MadeUpFragment([&](BoxWriter& writer, std::uint32_t) {
                   writer.box("free", [&] { writer.zeros(size - 8); });
               })
            .isRefused();
    };
    EXPECT_FALSE(refuses(1U << 20U));
    EXPECT_TRUE(refuses((1U << 20U) + 1));
}

} // namespace
} // namespace vantoro::testing
