// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/media/support/sample_descriptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <span>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/boxes/box_writer.h"
#include "media/movie/movie_scan.h"

namespace vantoro::testing::made_up {

namespace {

Bytes write(const std::function<void(media::BoxWriter&)>& content) {
    media::BoxWriter out;
    content(out);
    return out.take();
}

} // namespace

Bytes bytesOf(std::initializer_list<unsigned> values) {
    Bytes bytes;
    std::ranges::transform(values, std::back_inserter(bytes),
                           [](unsigned value) { return static_cast<std::byte>(value); });
    return bytes;
}

Bytes operator+(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Bytes stereo() {
    return bytesOf({0x11, 0x90, 0x56, 0xe5, 0x00});
}

Bytes box(const char* type, const Bytes& content) {
    return write([&](media::BoxWriter& out) { out.box(type, [&] { out.bytes(content); }); });
}

Bytes descriptor(unsigned tag, const Bytes& content, unsigned lengthBytes, int excess) {
    const auto length = static_cast<unsigned>(static_cast<int>(content.size()) + excess);
    Bytes bytes = bytesOf({tag});
    for (unsigned i = lengthBytes; i-- > 0;) {
        bytes.push_back(
            static_cast<std::byte>((i > 0 ? 0x80U : 0U) | ((length >> (7 * i)) & 0x7fU)));
    }
    return bytes + content;
}

Bytes decoderFields(unsigned objectType) {
    return write([&](media::BoxWriter& out) {
        out.u8(objectType);
        out.u8(0x15);
        out.zeros(3);
        out.u32(bitRate + 1); // at most
        out.u32(bitRate);
    });
}

Bytes streamFields() {
    return bytesOf({0, 1, 0});
}

Bytes versionAndFlags() {
    return Bytes(4);
}

Bytes streamBox(const Bytes& content) {
    return box("esds", versionAndFlags() + descriptor(3, streamFields() + content));
}

Bytes streamOf(const Bytes& configuration, unsigned objectType, unsigned lengthBytes) {
    const Bytes decoder = decoderFields(objectType) + descriptor(5, configuration, lengthBytes);
    return box("esds", versionAndFlags() +
                           descriptor(3, streamFields() + descriptor(4, decoder, lengthBytes),
                                      lengthBytes));
}

Bytes description(unsigned version, const Bytes& boxes, const char* type) {
    constexpr std::array<std::size_t, 4> moreFields{0, 16, 36, 36};
    return write([&](media::BoxWriter& out) {
        out.box(type, [&] {
            out.zeros(8);
            out.u16(version);
            out.zeros(18 + moreFields.at(version));
            out.bytes(boxes);
        });
    });
}

Bytes informationOf(const Bytes& descriptions) {
    const Bytes counts = bytesOf({0, 0, 0, 0, 0, 0, 0, 1});
    return box("smhd", Bytes(8)) + box("stbl", box("stsd", counts + descriptions));
}

std::optional<media::AacTrack> codecOf(const Bytes& information) {
    media::MovieScan scan;
    scan.tracks.push_back({.isAudio = true, .information = information});
    auto codecs = media::readCodecs(scan);
    EXPECT_EQ(codecs.size(), 1U);
    return std::move(codecs.at(0));
}

bool isRefused(const Bytes& information) {
    try {
        codecOf(information);
        return false;
    } catch (const media::DamagedMovie&) {
        return true;
    }
}

void expectStereo(const std::optional<media::AacTrack>& codec) {
    EXPECT_EQ(codec, (media::AacTrack{
                         .channels = 2, .bitRate = bitRate, .decoderConfiguration = stereo()}));
}

} // namespace vantoro::testing::made_up
