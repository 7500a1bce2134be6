// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/codec/aac_packet.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace vantoro::testing {
namespace {

using namespace media;

using PacketBytes = std::vector<std::uint8_t>;

/// Bytes from a text of ones and zeros; ignores spaces and pads with zeros.
PacketBytes bits(const std::string& text) {
    PacketBytes bytes;
    unsigned count = 0;
    for (const char digit : text) {
        if (digit == ' ') {
            continue;
        }
        if (count++ % 8 == 0) {
            bytes.push_back(0);
        }
        if (digit == '1') {
            bytes.back() |= static_cast<std::uint8_t>(0x80U >> ((count - 1) % 8));
        }
    }
    return bytes;
}

PacketBytes join(const std::vector<PacketBytes>& channels, unsigned gainSteps) {
    return joinChannels(
        std::vector<std::span<const std::uint8_t>>(channels.begin(), channels.end()), gainSteps);
}

TEST(AacPacket, aSingleChannelChangesOnlyItsGain) {
    EXPECT_EQ(join({bits("000 0000 01100100 1011 111")}, 6), bits("000 0000 01101010 1011 111"));
}

TEST(AacPacket, twoChannelsBecomeAPairWithAWindowEach) {
    EXPECT_EQ(join({bits("000 0000 01100100 10110110111 111"), bits("000 0000 00000001 1 111")}, 2),
              bits("001 0000 0 01100110 10110110111 00000011 1 111"));
}

TEST(AacPacket, theGainIsLimited) {
    EXPECT_EQ(join({bits("000 0000 11111110 0 111")}, 6), bits("000 0000 11111111 0 111"));
}

TEST(AacPacket, aChannelOfAnyLengthIsCopiedWhole) {
    const std::string content = "1001001001110010101011110010000101";
    for (std::size_t length = 0; length <= content.size(); ++length) {
        const auto channel = [part = content.substr(0, length)](const char* gain) {
            return std::string(gain).append(part);
        };
        const std::string left = channel("00000000");
        const std::string right = channel("00001111");
        EXPECT_EQ(join({bits("000 0000" + left + "111"), bits("000 0000" + right + "111")}, 0),
                  bits(std::string("001 0000 0").append(left).append(right).append("111")));
    }
}

TEST(AacPacket, aWindowEndsShortBeforeAShortOneAndInItself) {
    struct Case {
        const char* sequenceAndShape;
        WindowEnd expected;
    };

    for (const Case& the : std::vector<Case>{{"00 0", {.isShort = false, .shape = 0}},
                                             {"01 1", {.isShort = true, .shape = 1}},
                                             {"10 0", {.isShort = true, .shape = 0}},
                                             {"11 1", {.isShort = false, .shape = 1}}}) {
        const auto packet =
            bits(std::string("000 0000 01100100 0 ") + the.sequenceAndShape + " 1011 111");
        EXPECT_EQ(windowEndOf(packet), the.expected) << the.sequenceAndShape;
    }
    EXPECT_THROW(windowEndOf(bits("000 0000 01100100 01 111")), std::runtime_error);
}

TEST(AacPacket, refusesPacketsWithoutExactlyOneChannel) {
    EXPECT_THROW(join({{}}, 0), std::runtime_error);
    EXPECT_THROW(join({PacketBytes(20)}, 0), std::runtime_error);
    EXPECT_THROW(join({bits("001 0000 01100100 1011 111")}, 0), std::runtime_error);
    EXPECT_THROW(join({bits("000 0000 01100100 1011 101")}, 0), std::runtime_error);
    EXPECT_THROW(join({bits("111")}, 0), std::runtime_error);
}

} // namespace
} // namespace vantoro::testing
