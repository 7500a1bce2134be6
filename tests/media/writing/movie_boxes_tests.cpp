// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/movie_boxes.h"

#include <string>

#include <gtest/gtest.h>

#include "media/boxes/box_reader.h"

namespace vantoro::testing {
namespace {

using namespace media;

/// Reads a box's header, whose size must match its content.
void enter(ByteReader& fields, const char (&type)[5], std::uint64_t size) {
    EXPECT_EQ(fields.u32(), size);
    EXPECT_EQ(fields.u32(), boxType(type));
}

TEST(MovieBoxes, indexGivesEachTracksFragments) {
    const std::vector<std::vector<FragmentEntry>> tracks{
        {{.time = 0, .offset = 1382}, {.time = 48128, .offset = 0x1'0000'0000}},
        {}, // without sound
        {{.time = 0x1'0000'0001, .offset = 7}}};
    const auto bytes = fragmentIndex(tracks);
    ByteReader fields(bytes);
    enter(fields, "mfra", bytes.size());
    for (const std::uint32_t number : {1U, 3U}) {
        const auto& entries = tracks[number - 1];
        enter(fields, "tfra", 24 + (19 * entries.size()));
        EXPECT_EQ(fields.u32(), 1U << 24U); // 64-bit times and offsets
        EXPECT_EQ(fields.u32(), number);
        EXPECT_EQ(fields.u32(), 0U);
        EXPECT_EQ(fields.u32(), entries.size());
        for (const FragmentEntry& entry : entries) {
            EXPECT_EQ(fields.u64(), static_cast<std::uint64_t>(entry.time));
            EXPECT_EQ(fields.u64(), entry.offset);
            EXPECT_EQ(fields.u8() + fields.u8() + fields.u8(), 3);
        }
    }
    enter(fields, "mfro", 16);
    EXPECT_EQ(fields.u32(), 0U);
    EXPECT_EQ(fields.u32(), bytes.size());
}

struct PacketSize {
    std::uint32_t bytes;
    std::uint32_t frames;
};

std::vector<AacPacket> packetsOf(std::int64_t start, const std::vector<PacketSize>& sizes) {
    std::vector<AacPacket> packets;
    for (const auto& [bytes, frames] : sizes) {
        packets.push_back(
            {.bytes = std::vector<std::uint8_t>(bytes), .start = start, .frames = frames});
        start += frames;
    }
    return packets;
}

struct FieldsCase {
    const char* name;
    std::vector<PacketSize> packets;
    std::uint32_t flags;
    std::vector<std::uint32_t> fields; // of all packets
};

class PacketFields : public ::testing::TestWithParam<FieldsCase> {};

TEST_P(PacketFields, arePresentOnlyIfThePacketsDiffer) {
    const auto& [name, packets, flags, expected] = GetParam();
    const std::vector<FragmentTrack> tracks{{.number = 2, .packets = packetsOf(48128, packets)}};
    const auto bytes = movieFragment(5, tracks, {});
    const std::uint64_t run = 20 + (4 * expected.size());
    const std::uint64_t description = 8 + 16 + 8 + 28 + 20 + run;
    ByteReader fields(bytes);
    enter(fields, "moof", description);
    enter(fields, "mfhd", 16);
    EXPECT_EQ(fields.u32(), 0U);
    EXPECT_EQ(fields.u32(), 5U);
    enter(fields, "traf", 8 + 28 + 20 + run);
    enter(fields, "tfhd", 28);
    for (const std::uint32_t value :
         {0x020038U, 2U, packets.front().frames, packets.front().bytes, 0x2000000U}) {
        EXPECT_EQ(fields.u32(), value);
    }
    enter(fields, "tfdt", 20);
    EXPECT_EQ(fields.u32(), 1U << 24U);
    EXPECT_EQ(fields.u64(), 49152U);
    enter(fields, "trun", run);
    EXPECT_EQ(fields.u32(), flags);
    EXPECT_EQ(fields.u32(), packets.size());
    EXPECT_EQ(fields.u32(), description + 8);
    for (const std::uint32_t value : expected) {
        EXPECT_EQ(fields.u32(), value);
    }
    std::uint64_t content = 8;
    for (const auto& packet : packets) {
        content += packet.bytes;
    }
    enter(fields, "mdat", content);
    EXPECT_EQ(fields.rest().size() + 8, content);
}

INSTANTIATE_TEST_SUITE_P(
    All, PacketFields,
    ::testing::Values(FieldsCase{"allAlike", {{7, 1024}, {7, 1024}, {7, 1024}}, 0x001, {}},
                      FieldsCase{"onePacket", {{9, 300}}, 0x001, {}},
                      FieldsCase{"sizes", {{7, 1024}, {400, 1024}}, 0x201, {7, 400}},
                      FieldsCase{"aShortLastPacket", {{7, 1024}, {7, 300}}, 0x101, {1024, 300}},
                      FieldsCase{"both", {{7, 1024}, {8, 300}}, 0x301, {1024, 7, 300, 8}}),
    [](const auto& test) { return test.param.name; });

TEST(MovieBoxes, secondTracksContentFollowsTheFirsts) {
    const std::vector<FragmentTrack> tracks{{.number = 1, .packets = packetsOf(0, {{7, 1024}})},
                                            {.number = 2, .packets = packetsOf(0, {{9, 1024}})}};
    const auto bytes = movieFragment(1, tracks, {});
    constexpr std::uint64_t traf = 8 + 28 + 20 + 20;
    ByteReader fields(bytes);
    fields.take(8 + 16 + traf - 4);
    EXPECT_EQ(fields.u32(), bytes.size() - 7 - 9);
    fields.take(traf - 4);
    EXPECT_EQ(fields.u32(), bytes.size() - 9);
}

} // namespace
} // namespace vantoro::testing
