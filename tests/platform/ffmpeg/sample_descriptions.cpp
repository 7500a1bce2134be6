// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/ffmpeg/sample_descriptions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <span>
#include <utility>

#include "platform/ffmpeg/box_reader.h"
#include "platform/ffmpeg/box_writer.h"
#include "platform/ffmpeg/movie_codecs.h"

namespace vantoro::made_up {

namespace {

Bytes write(const std::function<void(ffmpeg::BoxWriter&)>& content) {
    ffmpeg::BoxWriter out;
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
    return write([&](ffmpeg::BoxWriter& out) { out.box(type, [&] { out.bytes(content); }); });
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

Bytes decoderFields(unsigned coding) {
    return write([&](ffmpeg::BoxWriter& out) {
        out.u8(coding);
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

Bytes streamOf(const Bytes& configuration, unsigned coding, unsigned lengthBytes) {
    const Bytes decoder = decoderFields(coding) + descriptor(5, configuration, lengthBytes);
    return box("esds", versionAndFlags() +
                           descriptor(3, streamFields() + descriptor(4, decoder, lengthBytes),
                                      lengthBytes));
}

Bytes description(unsigned version, const Bytes& boxes, const char* type) {
    constexpr std::array<std::size_t, 4> moreFields{0, 16, 36, 36};
    return write([&](ffmpeg::BoxWriter& out) {
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

ffmpeg::ParametersHandle codecOf(const Bytes& information) {
    ffmpeg::MovieScan scan;
    scan.tracks.push_back({.isAudio = true, .information = information});
    auto codecs = ffmpeg::readCodecs(scan);
    EXPECT_EQ(codecs.size(), 1U);
    return std::move(codecs.at(0));
}

bool isRefused(const Bytes& information) {
    try {
        codecOf(information);
        return false;
    } catch (const ffmpeg::DamagedMovie&) {
        return true;
    }
}

Bytes configurationOf(const AVCodecParameters& codec) {
    const auto bytes =
        std::as_bytes(std::span(codec.extradata, static_cast<std::size_t>(codec.extradata_size)));
    return {bytes.begin(), bytes.end()};
}

void expectStereo(const ffmpeg::ParametersHandle& codec) {
    ASSERT_NE(codec, nullptr);
    EXPECT_EQ(codec->codec_id, AV_CODEC_ID_AAC);
    EXPECT_EQ(codec->ch_layout.nb_channels, 2);
    EXPECT_EQ(codec->sample_rate, 48000);
    EXPECT_EQ(codec->bit_rate, bitRate);
    EXPECT_EQ(configurationOf(*codec), stereo());
}

} // namespace vantoro::made_up
