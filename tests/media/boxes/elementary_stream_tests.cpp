// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/elementary_stream.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/media/support/sample_descriptions.h"

namespace vantoro::testing {
namespace {

using made_up::bytesOf;
using made_up::decoderFields;
using made_up::descriptor;
using made_up::stereo;
using made_up::streamFields;
using made_up::operator+;
using made_up::versionAndFlags;

made_up::Bytes decoder() {
    return descriptor(4, decoderFields(0x67) + descriptor(5, stereo()));
}

/// The stream borrows the content.
void expectRead(const made_up::Bytes& content, const made_up::Bytes& configuration = stereo()) {
    const media::ElementaryStream stream = media::readElementaryStream(content);
    EXPECT_EQ(stream.objectType, 0x67);
    EXPECT_EQ(stream.bitRate, made_up::bitRate);
    EXPECT_EQ(made_up::Bytes(stream.configuration.begin(), stream.configuration.end()),
              configuration);
}

TEST(ElementaryStream, isReadForAnyVersionAndPriority) {
    expectRead(versionAndFlags() + descriptor(3, streamFields() + decoder()));
    expectRead(bytesOf({3, 2, 1, 1}) + descriptor(3, streamFields() + decoder()));
    expectRead(versionAndFlags() + descriptor(3, bytesOf({1, 2, 0x1f}) + decoder()));
}

TEST(ElementaryStream, hasDescriptorsOfAnyLength) {
    for (const std::size_t size : {2U, 126U, 127U, 128U, 129U, 16383U, 16384U}) {
        made_up::Bytes configuration(size, std::byte{7});
        for (unsigned lengthBytes = 1; lengthBytes <= 4; ++lengthBytes) {
            if (size >> (7 * lengthBytes) != 0) {
                continue;
            }
            const auto inner = descriptor(5, configuration, lengthBytes);
            expectRead(
                versionAndFlags() +
                    descriptor(3, streamFields() + descriptor(4, decoderFields(0x67) + inner)),
                configuration);
        }
    }
}

TEST(ElementaryStream, isRefusedWithTheReason) {
    std::string complaint;
    try {
        media::readElementaryStream(versionAndFlags() + bytesOf({3, 0x80, 0x80, 0x80, 0x80, 1}));
    } catch (const media::DamagedMovie& damage) {
        complaint = damage.what();
    }
    EXPECT_EQ(complaint, "The recording file is damaged: a descriptor's length has no end.");
}

} // namespace
} // namespace vantoro::testing
