// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/encoded_segment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <stdexcept>
#include <utility>
#include <vector>

#include "media/mix/parallel_encoding.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "platform/posix/posix_file_system.h"
#include "tests/media/support/external_programs.h"
#include "tests/media/support/movie_recording.h"
#include "tests/support/memory_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::testing {
namespace {

using namespace media;

using MixPackets = std::vector<std::vector<std::byte>>;
using Channels = std::array<std::vector<float>, 2>;

constexpr WindowEnd longEnd{.isShort = false, .shape = 1};
constexpr WindowEnd shortEnd{.isShort = true, .shape = 1};

/// One-byte packets that hold their number and their encoder's.
EncodedSegment made(std::int64_t first, std::int64_t count, std::int64_t maker,
                    const std::vector<WindowEnds>& ends) {
    EncodedSegment segment;
    segment.firstPacket = first;
    segment.sizes.assign(static_cast<std::size_t>(count), 1);
    for (std::int64_t packet = first; packet < first + count; ++packet) {
        segment.bytes.push_back(static_cast<std::byte>(packet + (100 * maker)));
    }
    segment.windowEnds = ends;
    segment.windowEnds.resize(static_cast<std::size_t>(count) + 1, {longEnd, longEnd});
    return segment;
}

std::vector<int> spliced(std::vector<EncodedSegment> segments) {
    std::vector<int> bytes;
    SegmentSplicer splicer([&](std::span<const std::byte> packet) {
        ASSERT_EQ(packet.size(), 1U);
        bytes.push_back(std::to_integer<int>(packet[0]));
    });
    for (EncodedSegment& segment : segments) {
        splicer.add(std::move(segment));
    }
    splicer.finish();
    return bytes;
}

TEST(SegmentSplicer, takesEachPacketOnceFromItsSegment) {
    EXPECT_EQ(spliced({made(0, 5, 0, {}), made(3, 4, 1, {}), made(6, 2, 2, {})}),
              (std::vector<int>{0, 1, 2, 103, 104, 105, 206, 207}));
    EXPECT_EQ(spliced({made(0, 3, 0, {})}), (std::vector<int>{0, 1, 2}));
}

TEST(SegmentSplicer, switchesWhereTheWindowEndsOfBothCodersMatch) {
    const WindowEnds alike{longEnd, longEnd};
    const WindowEnds leftShort{shortEnd, longEnd};
    const WindowEnds rightShort{longEnd, shortEnd};
    const WindowEnds otherShape{longEnd, WindowEnd{.isShort = false, .shape = 0}};

    struct Case {
        std::vector<WindowEnds> before; // from packet 2 on
        std::vector<WindowEnds> after;
        std::vector<int> expected;
    };

    for (const Case& the : std::vector<Case>{
             {{alike}, {alike}, {0, 1, 2, 103, 104, 105}},
             {{leftShort, alike}, {alike, alike}, {0, 1, 2, 3, 104, 105}},
             {{alike, alike}, {rightShort, alike}, {0, 1, 2, 3, 104, 105}},
             {{otherShape, leftShort, alike}, {alike, alike, alike}, {0, 1, 2, 3, 4, 105}},
             {{leftShort}, {leftShort}, {0, 1, 2, 103, 104, 105}},
         }) {
        std::vector<WindowEnds> before{alike, alike, alike};
        before.insert(before.end(), the.before.begin(), the.before.end());
        EXPECT_EQ(spliced({made(0, 5, 0, before), made(3, 3, 1, the.after)}), the.expected);
    }
}

TEST(SegmentSplicer, switchesAtTheSegmentsStartIfNoWindowEndsMatch) {
    const std::vector<WindowEnds> never(6, {shortEnd, longEnd});
    EXPECT_EQ(spliced({made(0, 5, 0, never), made(3, 3, 1, {})}),
              (std::vector<int>{0, 1, 2, 103, 104, 105}));
}

TEST(EncodedSegment, packetsAndSegmentsOfAMixAreCounted) {
    EXPECT_EQ(packetsOf(1), 2);
    EXPECT_EQ(packetsOf(1024), 2);
    EXPECT_EQ(packetsOf(1025), 3);
    EXPECT_EQ(segmentsOf(1), 1);
    EXPECT_EQ(segmentsOf((segmentPackets - 1) * packetFrames), 1);
    EXPECT_EQ(segmentsOf(((segmentPackets - 1) * packetFrames) + 1), 2);
}

/// A different string in each channel, with strokes that make the encoder switch windows, one of
/// them exactly where a segment begins.
Channels music(std::int64_t frames) {
    std::vector<std::int64_t> strokes{(segmentPackets * packetFrames) - 700};
    for (std::int64_t at = 3000; at < frames; at += 7919) {
        strokes.push_back(at);
    }
    Channels channels;
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        const Sound low = tone(channel == 0 ? 440 : 554, 0.1F);
        const Sound high = tone(channel == 0 ? 1234 : 1661, 0.1F);
        for (std::int64_t frame = 0; frame < second; ++frame) { // repeated each second
            channels[channel].push_back(low(frame) + high(frame));
        }
        for (std::int64_t frame = second; frame < frames; ++frame) {
            channels[channel].push_back(
                channels[channel][static_cast<std::size_t>(frame - second)]);
        }
    }
    for (const std::int64_t stroke : strokes) {
        const Sound sound = clicks({stroke});
        for (std::int64_t frame = std::max<std::int64_t>(0, stroke - 50);
             frame < std::min(frames, stroke + 50); ++frame) {
            channels[0][static_cast<std::size_t>(frame)] += 0.3F * sound(frame);
            channels[1][static_cast<std::size_t>(frame)] += 0.2F * sound(frame);
        }
    }
    return channels;
}

/// A movie of two segments, in memory.
class SegmentedEncoding : public ::testing::Test {
protected:
    static constexpr std::int64_t frames = ((segmentPackets + 200) * packetFrames) + 123;

    MemoryFileSystem files;
    Mix mix;

    void SetUp() override {
        files.put("movie.mov", recorded());
        open(files, "movie.mov");
    }

    void open(FileSystem& fileSystem, const std::filesystem::path& movie) {
        mix = {{.movie = openMovie(fileSystem, movie), .frames = frames, .volume = 0.9F}};
    }

    static std::vector<std::byte> recorded() {
        MemoryFileSystem files;
        MovieRecording recording(files, "movie.mov", {systemTrack});
        const Channels channels = music(frames);
        std::vector<float> samples = channels[0];
        samples.insert(samples.end(), channels[1].begin(), channels[1].end());
        SampleBuffer buffer = SoundBuffer(0, 0, 2, silence()).buffer();
        buffer.frameCount = frames;
        buffer.samples = samples;
        EXPECT_TRUE(recording.track(0).append(buffer));
        recording.finish();
        return files.contentOf("movie.mov");
    }

    /// The mix before encoding.
    Channels mixed() const {
        Mixer mixer(ffmpeg::codec(), mix, 0);
        Channels channels;
        std::array<float, packetFrames> left{};
        std::array<float, packetFrames> right{};
        for (std::int64_t frame = 0; frame < frames; frame += packetFrames) {
            mixer.read({.left = left, .right = right});
            channels[0].insert(channels[0].end(), left.begin(), left.end());
            channels[1].insert(channels[1].end(), right.begin(), right.end());
        }
        return channels;
    }

    /// Encoded by one encoder from beginning to end.
    static MixPackets encodedSerially(const Channels& channels) {
        AacEncoder encoder = makeMixEncoder(ffmpeg::codec());
        MixPackets packets;
        const PacketSink keep = [&](const AacPacket& packet) {
            const auto bytes = std::as_bytes(std::span(packet.bytes));
            packets.emplace_back(bytes.begin(), bytes.end());
        };
        for (std::int64_t frame = 0; frame < frames; frame += packetFrames) {
            for (int channel = 0; channel < 2; ++channel) {
                const auto part = std::span(channels[static_cast<std::size_t>(channel)])
                                      .subspan(static_cast<std::size_t>(frame), packetFrames);
                std::ranges::copy(part, encoder.plane(channel).begin());
            }
            const std::int64_t left = frames - frame;
            encoder.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, left)), keep);
        }
        encoder.finish(keep);
        return packets;
    }

    MixPackets encodedBy(unsigned threads) const {
        MixPackets packets;
        SegmentSplicer splicer([&](std::span<const std::byte> packet) {
            packets.emplace_back(packet.begin(), packet.end());
        });
        encodeInParallel(ffmpeg::codec(), mix, 0, threads, splicer, {}, {});
        return packets;
    }

    static Channels decoded(const MixPackets& packets) {
        const auto decoder = ffmpeg::codec().makeDecoder(makeMixEncoder(ffmpeg::codec()).track());
        Channels channels;
        for (const auto& packet : packets) {
            const auto sound = decoder->decode(packet);
            if (!sound) {
                ADD_FAILURE() << "a packet makes no sense";
                continue;
            }
            channels[0].insert(channels[0].end(), sound->left.begin(), sound->left.end());
            channels[1].insert(channels[1].end(), sound->right.begin(), sound->right.end());
        }
        return channels;
    }

    /// The energy of the encoding noise around the seams.
    static double errorAtSeams(const Channels& sound, const Channels& original) {
        double sum = 0;
        for (std::int64_t seam = segmentPackets; seam < packetsOf(frames); seam += segmentPackets) {
            for (std::int64_t frame = (seam - 2) * packetFrames;
                 frame < (seam + packetsAfterSegment + 2) * packetFrames; ++frame) {
                for (std::size_t channel = 0; channel < 2; ++channel) {
                    const auto at = static_cast<std::size_t>(frame);
                    const double error = sound[channel][at + primingFrames] - original[channel][at];
                    sum += error * error;
                }
            }
        }
        return sum;
    }
};

TEST_F(SegmentedEncoding, doesNotDependOnTheNumberOfThreads) {
    const MixPackets one = encodedBy(1);
    EXPECT_EQ(one.size(), static_cast<std::size_t>(packetsOf(frames)));
    EXPECT_EQ(encodedBy(2), one);
    EXPECT_EQ(encodedBy(7), one);
}

TEST_F(SegmentedEncoding, noSeamSoundsWorseThanWhatOneCoderMakes) {
    const Channels original = mixed();
    const Channels serial = decoded(encodedSerially(original));
    const Channels segmented = decoded(encodedBy(2));
    EXPECT_EQ(segmented[0].size(), serial[0].size());
    const double decibels =
        10 * std::log10(errorAtSeams(segmented, original) / errorAtSeams(serial, original));
    EXPECT_LT(decibels, 0.3);
}

TEST_F(SegmentedEncoding, aFailingSinkEndsTheCoding) {
    int taken = 0;
    SegmentSplicer splicer([&](std::span<const std::byte>) {
        if (++taken == 100) {
            throw std::runtime_error("No space left on device");
        }
    });
    EXPECT_THROW(encodeInParallel(ffmpeg::codec(), mix, 0, 2, splicer, {}, {}), std::runtime_error);
    EXPECT_EQ(taken, 100);
}

TEST_F(SegmentedEncoding, anUnreadableSourceEndsTheCoding) {
    const TemporaryFolder folder;
    const auto movie = folder.put("movie.mov", files.contentOf("movie.mov"));
    posix::PosixFileSystem onDisk;
    open(onDisk, movie);
    std::filesystem::resize_file(movie, std::filesystem::file_size(movie) / 2);
    EXPECT_ANY_THROW(encodedBy(2));
}

} // namespace
} // namespace vantoro::testing
