// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <algorithm>
#include <span>
#include <string_view>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/movie/movie_scan.h"
#include "tests/media/support/movie_recording.h"
#include "tests/media/support/sample_descriptions.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {
namespace {

using namespace made_up;
using media::DamagedMovie;

/// The codec description of a recording's first track.
Bytes recordedInformation() {
    MemoryFileSystem files;
    files.put("movie.mov", recordMovie(48000, tone(440, 0.5F)));
    return media::scanMovie(*files.open("movie.mov")).tracks.at(0).information;
}

TEST(DamagedCodecs, wrongDescriptionsAreRefused) {
    const Bytes decoder = decoderFields();
    const Bytes whole = descriptor(5, stereo());
    const Bytes endless = bytesOf({5, 0x80, 0x80, 0x80, 0x80, 5}) + stereo();

    struct Case {
        const char* name;
        Bytes boxes;
    };

    const std::vector<Case> cases{
        {"nothing", {}},
        {"no stream", box("btrt", Bytes(12)) + box("wave", box("frma", Bytes(4)))},
        {"empty stream", box("esds", {})},
        {"no descriptor", box("esds", versionAndFlags())},
        {"another descriptor", box("esds", versionAndFlags() + descriptor(6, streamFields()))},
        {"no decoder", streamBox({})},
        {"empty decoder", streamBox(descriptor(4, {}))},
        {"no configuration", streamBox(descriptor(4, decoder))},
        {"configuration outside", streamBox(descriptor(4, decoder) + whole)},
        {"empty configuration", streamOf({})},
        {"configuration of a byte", streamOf(bytesOf({0x11}))},
        {"length too large", streamBox(descriptor(4, decoder + descriptor(5, stereo(), 4, 1)))},
        {"largest length", streamBox(descriptor(4, decoder + descriptor(5, stereo(), 4, -6)))},
        {"decoder too large", streamBox(descriptor(4, decoder + whole, 4, 1))},
        {"decoder of length 0",
         streamBox(descriptor(4, decoder + whole, 1, -static_cast<int>((decoder + whole).size())))},
        {"length without end", streamBox(descriptor(4, decoder + endless))},
        {"44100 Hz", streamOf(bytesOf({0x12, 0x10}))},
        {"box of size 0", Bytes(8) + streamOf(stereo())},
        {"box of size 7", bytesOf({0, 0, 0, 7, 0, 0, 0, 0}) + streamOf(stereo())},
        {"box too large", bytesOf({0xff, 0xff, 0xff, 0xff, 'e', 's', 'd', 's'})},
    };
    for (const Case& test : cases) {
        EXPECT_TRUE(isRefused(informationOf(description(1, test.boxes)))) << test.name;
    }
    EXPECT_TRUE(isRefused(informationOf(description(3, streamOf(stereo())))));
    EXPECT_TRUE(isRefused(informationOf(box("mp4a", {}))));
    EXPECT_TRUE(isRefused(box("stbl", box("stsd", {}))));
}

TEST(DamagedCodecs, deepNestingIsRefused) {
    for (const bool ofBoxes : {true, false}) {
        Bytes nested = ofBoxes ? streamOf(stereo()) : descriptor(5, stereo());
        for (int depth = 0; depth < 1000; ++depth) {
            nested = ofBoxes ? box("wave", nested) : descriptor(4, decoderFields() + nested);
        }
        const Bytes boxes = ofBoxes ? nested : streamBox(nested);
        EXPECT_TRUE(isRefused(informationOf(description(0, boxes)))) << ofBoxes;
    }
}

TEST(DamagedCodecs, aHeaderFullOfTheSmallestBoxesIsRead) {
    Bytes boxes;
    while (boxes.size() < 900'000) {
        boxes = std::move(boxes) + box("free", {});
    }
    expectStereo(codecOf(boxes + informationOf(description(0, boxes + streamOf(stereo())))));
}

TEST(DamagedCodecs, tablesThatClaimBillionsOfEntriesAreNotRead) {
    Bytes movie = recordMovie(48000, tone(440, 0.5F));
    for (const std::string_view table : {"stts", "stsc", "stsz", "stco", "dref"}) {
        const auto name = std::as_bytes(std::span(table));
        for (auto found = movie.begin();;) {
            found = std::search(found, movie.end(), name.begin(), name.end());
            if (found == movie.end()) {
                break;
            }
            std::fill(found + 8, found + 12, std::byte{0x7f});
            found += 4;
        }
    }
    MemoryFileSystem files;
    files.put("movie.mov", movie);
    for (const auto& codec : media::readCodecs(media::scanMovie(*files.open("movie.mov")))) {
        EXPECT_TRUE(codec);
    }
}

TEST(DamagedCodecs, everyTruncationOfARecordedHeaderHasNone) {
    const Bytes whole = recordedInformation();
    ASSERT_TRUE(codecOf(whole));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_TRUE(isRefused(cut) || !codecOf(cut)) << size;
    }
}

TEST(DamagedCodecs, everyTruncationOfADescriptionIsRefused) {
    const Bytes decoder = decoderFields() + descriptor(5, stereo());
    const Bytes stream = versionAndFlags() + descriptor(3, streamFields() + descriptor(4, decoder));
    const Bytes fields = Bytes(28) + box("esds", stream);
    const auto part = [](const Bytes& bytes, std::size_t size) {
        return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    };
    // Its parents are whole.
    for (std::size_t size = 0; size < fields.size(); ++size) {
        EXPECT_TRUE(isRefused(informationOf(box("mp4a", part(fields, size))))) << size;
    }
    for (std::size_t size = 0; size < stream.size(); ++size) {
        EXPECT_TRUE(isRefused(informationOf(description(2, box("esds", part(stream, size))))))
            << size;
    }
    for (std::size_t size = 0; size < decoder.size(); ++size) {
        EXPECT_TRUE(
            isRefused(informationOf(description(0, streamBox(descriptor(4, part(decoder, size)))))))
            << size;
    }
}

TEST(DamagedCodecs, everyWrongByteOfARecordedHeaderIsReadOrRefused) {
    Bytes damaged = recordedInformation();
    for (std::byte& byte : damaged) {
        const std::byte right = byte;
        for (const unsigned wrong : {0x00U, 0x01U, 0x10U, 0x7fU, 0x80U, 0xffU}) {
            byte = std::byte{static_cast<std::uint8_t>(wrong)};
            if (!isRefused(damaged)) {
                if (const auto codec = codecOf(damaged)) {
                    EXPECT_GE(codec->channels, 1);
                    EXPECT_GE(codec->decoderConfiguration.size(), 2U);
                }
            }
        }
        byte = right;
    }
}

} // namespace
} // namespace vantoro::testing
