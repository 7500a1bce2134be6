// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

extern "C" {
#include <libavformat/avformat.h>
}

#include <algorithm>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "media/boxes/box_reader.h"
#include "media/movie/movie_scan.h"
#include "platform/ffmpeg/handles.h"
#include "platform/posix/posix_file_system.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/media/support/sample_descriptions.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

using namespace made_up;
using media::DamagedMovie;

void expectSame(const media::AacTrack& ours, const AVCodecParameters& theirs) {
    EXPECT_EQ(theirs.codec_id, AV_CODEC_ID_AAC);
    EXPECT_EQ(theirs.sample_rate, 48000);
    EXPECT_EQ(ours.channels, theirs.ch_layout.nb_channels);
    const auto configuration =
        std::as_bytes(std::span(theirs.extradata, static_cast<std::size_t>(theirs.extradata_size)));
    EXPECT_TRUE(std::ranges::equal(ours.decoderConfiguration, configuration));
}

/// Compares all tracks of a file with what libavformat reads. For a file whose packets precede the
/// header, libavformat measures the bit rate instead of reading it.
void expectAsDemuxed(const std::filesystem::path& path, std::size_t tracks, bool hasFragments) {
    SCOPED_TRACE(path);
    posix::PosixFileSystem files;
    const media::MovieScan scan = media::scanMovie(*files.open(path));
    std::filesystem::resize_file(path, scan.headerEnd);
    AVFormatContext* context = nullptr;
    ASSERT_EQ(avformat_open_input(&context, path.c_str(), nullptr, nullptr), 0);
    const std::unique_ptr<AVFormatContext, ffmpeg::Release<avformat_close_input>> theirs(context);
    const auto codecs = media::readCodecs(scan);
    ASSERT_EQ(codecs.size(), tracks);
    ASSERT_EQ(theirs->nb_streams, tracks);
    for (std::size_t index = 0; index < tracks; ++index) {
        ASSERT_TRUE(codecs[index]);
        const AVCodecParameters& track = *theirs->streams[index]->codecpar;
        expectSame(*codecs[index], track);
        if (hasFragments) {
            EXPECT_EQ(codecs[index]->bitRate, track.bit_rate);
        }
    }
}

TEST(MovieCodecs, ofARecordingMatchTheDemuxers) {
    const TemporaryFolder folder;
    expectAsDemuxed(folder.put("movie.mov", recordMovie(48000, tone(440, 0.5F))), 2, true);
}

TEST(MovieCodecs, ofAnotherWritersFileMatchTheDemuxers) {
    const TemporaryFolder folder;
    const std::string source =
        "ffmpeg -nostdin -v error -y -f lavfi -i sine=r=48000:d=0.5 -c:a aac ";
    const std::string fragments = "-movflags empty_moov+default_base_moof -frag_duration 200000 ";
    for (const char* type : {"mov", "mp4"}) {
        for (const int channels : {1, 2, 6}) {
            for (const bool hasFragments : {true, false}) {
                const auto path = folder.path() / (std::string("movie.") + type);
                run(source + (hasFragments ? fragments : "") + "-ac " + std::to_string(channels) +
                    " " + path.string());
                expectAsDemuxed(path, 1, hasFragments);
            }
        }
    }
}

TEST(MovieCodecs, everyVersionOfADescriptionIsRead) {
    const Bytes stream = streamOf(stereo());
    const Bytes other = box("btrt", Bytes(12));
    const Bytes wave =
        box("wave", box("frma", Bytes(4)) + box("mp4a", Bytes(4)) + stream + Bytes(8));
    for (const Bytes& boxes : {stream, wave, other + stream, other + wave, stream + Bytes(4),
                               box("wave", other) + wave}) {
        for (const unsigned version : {0U, 1U, 2U}) {
            expectStereo(codecOf(informationOf(description(version, boxes))));
        }
    }
    // The first description counts; the recorder's movies have only one.
    expectStereo(codecOf(informationOf(description(0, stream) + description(0, {}))));
}

TEST(MovieCodecs, everyFormOfADescriptorIsRead) {
    for (const unsigned lengthBytes : {1U, 2U, 3U, 4U}) {
        expectStereo(
            codecOf(informationOf(description(1, streamOf(stereo(), mpeg4Sound, lengthBytes)))));
    }
    const Bytes decoder = descriptor(4, decoderFields() + descriptor(5, stereo()));
    const Bytes behind = descriptor(6, bytesOf({2}));
    for (const Bytes& fields :
         {bytesOf({0, 0, 0x80, 1, 2}), bytesOf({0, 0, 0x40, 3, 'a', 'b', 'c'}),
          bytesOf({0, 0, 0x20, 1, 2}), bytesOf({0, 0, 0xe0, 1, 2, 1, 'a', 1, 2}),
          streamFields() + behind}) {
        expectStereo(codecOf(informationOf(description(
            0, box("esds", versionAndFlags() + descriptor(3, fields + decoder + behind))))));
    }
}

TEST(MovieCodecs, longConfigurationsAreKeptWhole) {
    Bytes configuration(500, std::byte{0x5a});
    std::ranges::copy(stereo(), configuration.begin());
    const auto codec = codecOf(informationOf(description(0, streamOf(configuration))));
    ASSERT_TRUE(codec);
    EXPECT_EQ(codec->decoderConfiguration, configuration);
}

TEST(MovieCodecs, channelsAreThoseOfTheConfiguration) {
    const std::vector<int> expected{0, 1, 2, 3, 4, 5, 6, 8, 0, 0, 0, 0, 0, 0, 0, 0};
    for (unsigned field = 0; field < expected.size(); ++field) {
        const Bytes information =
            informationOf(description(0, streamOf(bytesOf({0x11, 0x80 | field << 3U}))));
        if (expected[field] == 0) {
            EXPECT_TRUE(isRefused(information)) << field;
        } else {
            EXPECT_EQ(codecOf(information).value().channels, expected[field]);
        }
    }
}

TEST(MovieCodecs, areThoseOfEachKindOfAac) {
    for (unsigned type = 0; type < 256; ++type) {
        const bool isAac = type == 0x40 || type == 0x66 || type == 0x67 || type == 0x68;
        const auto codec = codecOf(informationOf(description(0, streamOf(stereo(), type))));
        EXPECT_EQ(codec.has_value(), isAac) << type;
    }
    for (unsigned kind = 0; kind < 32; ++kind) {
        const Bytes configuration = bytesOf({(kind << 3U) | 1U, 0x90});
        const auto codec = codecOf(informationOf(description(0, streamOf(configuration))));
        EXPECT_EQ(codec.has_value(), kind >= 1 && kind <= 4) << kind;
    }
}

TEST(MovieCodecs, areRefusedWithTheReason) {
    std::string complaint;
    try {
        codecOf(informationOf(description(0, box("btrt", Bytes(12)))));
    } catch (const std::runtime_error& damage) {
        complaint = damage.what();
    }
    EXPECT_EQ(complaint, "The recording file is damaged: a track does not say how it is coded.");
}

TEST(MovieCodecs, aTrackThatIsNotAacHasNone) {
    const Bytes stream = streamOf(stereo());
    const std::vector<Bytes> cases{
        {},
        box("smhd", Bytes(8)),
        box("stbl", {}),
        box("stbl", box("stsd", Bytes(8))),
        informationOf(description(0, stream, "sowt")),
        informationOf(description(0, streamOf(stereo(), 0x6b))),
        informationOf(description(0, streamOf(bytesOf({0x01, 0x90})))), // object type 0
        informationOf(description(0, streamOf(bytesOf({0x29, 0x90})))), // object type 5
        informationOf(description(0, streamOf(bytesOf({0xf9, 0x90})))), // object type 31
    };
    for (std::size_t index = 0; index < cases.size(); ++index) {
        EXPECT_FALSE(codecOf(cases[index])) << index;
    }
}

TEST(MovieCodecs, aTrackThatIsNotAudioIsIgnored) {
    media::MovieScan scan;
    const Bytes damaged = bytesOf({0, 0, 0, 1, 0, 0, 0, 0});
    scan.tracks.push_back({.information = damaged});
    scan.tracks.push_back(
        {.isAudio = true, .information = informationOf(description(0, streamOf(stereo())))});
    const auto codecs = media::readCodecs(scan);
    ASSERT_EQ(codecs.size(), 2U);
    EXPECT_FALSE(codecs[0]);
    expectStereo(codecs[1]);
    scan.tracks[0].isAudio = true;
    EXPECT_THROW(media::readCodecs(scan), DamagedMovie);
}

} // namespace
} // namespace vantoro::testing
