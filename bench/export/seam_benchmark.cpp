// SPDX-License-Identifier: GPL-3.0-or-later

// Measures the cost of encoding in segments at their seams: the noise around each seam compared
// with that of a single encoder, and whether each packet's window may follow the previous one.
// Usage: seam_benchmark MINUTES

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/support/table.h"
#include "bench/support/test_movie.h"
#include "media/mix/parallel_encoding.h"
#include "platform/ffmpeg/ffmpeg_codec.h"
#include "platform/posix/posix_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::bench {

namespace {

using namespace media;
using Packets = std::vector<std::vector<std::byte>>;

constexpr std::array volumes{0.9F, 1.0F};
constexpr std::int64_t packetsAboutSeam = 2;
constexpr std::int64_t packetsToWarmUp = 4;

Packets codedInSegments(const Mix& mix) {
    Packets packets;
    SegmentSplicer splicer([&](std::span<const std::byte> packet) {
        packets.emplace_back(packet.begin(), packet.end());
    });
    encodeInParallel(ffmpeg::codec(), mix, 0, 2, splicer, {}, {});
    return packets;
}

Packets codedByOne(const Mix& mix) {
    Packets packets;
    AacEncoder encoder = makeMixEncoder(ffmpeg::codec());
    const PacketSink keep = [&](const AacPacket& packet) {
        const auto bytes = std::as_bytes(std::span(packet.bytes));
        packets.emplace_back(bytes.begin(), bytes.end());
    };
    Mixer mixer(ffmpeg::codec(), mix, 0);
    for (std::int64_t left = framesOf(mix); left > 0; left -= packetFrames) {
        mixer.read({.left = encoder.plane(0).first<packetFrames>(),
                    .right = encoder.plane(1).first<packetFrames>()});
        encoder.encode(static_cast<int>(std::min<std::int64_t>(packetFrames, left)), keep);
    }
    encoder.finish(keep);
    return packets;
}

double energyOfDifference(std::span<const float> one, std::span<const float> other) {
    double sum = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        const double difference = one[i] - other[i];
        sum += difference * difference;
    }
    return sum;
}

/// The energy of the encoding noise around a seam.
double noiseAbout(std::int64_t seam, const Packets& packets, const Mix& mix) {
    const std::int64_t first = seam - packetsAboutSeam;
    const std::int64_t last = seam + packetsAfterSegment + packetsAboutSeam;
    const auto decoder = ffmpeg::codec().makeDecoder(makeMixEncoder(ffmpeg::codec()).track());
    Mixer mixer(ffmpeg::codec(), mix, first - 1); // the first packet is the priming
    std::array<float, packetFrames> left{};
    std::array<float, packetFrames> right{};
    double noise = 0;
    for (std::int64_t packet = first - packetsToWarmUp; packet < last; ++packet) {
        const auto sound = decoder->decode(packets.at(static_cast<std::size_t>(packet)));
        if (!sound) {
            throw std::runtime_error("a packet cannot be decoded");
        }
        if (packet >= first) {
            mixer.read({.left = left, .right = right});
            noise +=
                energyOfDifference(sound->left, left) + energyOfDifference(sound->right, right);
        }
    }
    return noise;
}

/// A stereo packet's left window: 0 long, 1 long to short, 2 short, 3 short to long.
unsigned windowOf(std::span<const std::byte> packet) {
    // 8 bits of element header, 8 of gain, 1 reserved.
    return std::to_integer<unsigned>(packet[2]) >> 5U & 3U;
}

bool mayFollow(unsigned before, unsigned window) {
    const bool beforeEndsShort = before == 1 || before == 2;
    const bool beginsShort = window == 2 || window == 3;
    return beforeEndsShort == beginsShort;
}

void measure(int minutes) {
    const testing::TemporaryFolder folder;
    recordTestMovie(folder / "movie.mov", minutes);
    posix::PosixFileSystem files;
    const std::shared_ptr<const Movie> movie = openMovie(files, folder / "movie.mov");
    Mix mix;
    for (std::size_t track = 0; track < volumes.size(); ++track) {
        const auto frames = static_cast<std::int64_t>(minutes) * 60 * framesPerSecond;
        mix.push_back(
            {.movie = movie, .track = track, .frames = frames, .volume = volumes.at(track)});
    }
    const Packets segmented = codedInSegments(mix);
    const Packets serial = codedByOne(mix);
    double worst = -100;
    int seams = 0;
    const auto end = packetsOf(framesOf(mix)) - packetsAfterSegment - packetsAboutSeam;
    for (std::int64_t seam = segmentPackets; seam < end; seam += segmentPackets, ++seams) {
        const double ratio = noiseAbout(seam, segmented, mix) / noiseAbout(seam, serial, mix);
        worst = std::max(worst, 10 * std::log10(ratio));
    }
    int wrong = 0;
    int changes = 0;
    for (std::size_t packet = 1; packet < segmented.size(); ++packet) {
        const unsigned before = windowOf(segmented[packet - 1]);
        const unsigned window = windowOf(segmented[packet]);
        wrong += mayFollow(before, window) ? 0 : 1;
        changes += before == window ? 0 : 1;
    }
    const std::string packets = std::to_string(segmented.size()) + " packets";
    printRow(digits(worst, 2) + " dB", "0.3 dB", "noise about the worst seam of segments",
             std::to_string(seams) + " seams", "one coder for all");
    printRow(std::to_string(wrong), "0", "windows that may not follow the one before", packets,
             std::to_string(changes) + " changes of windows");
}

} // namespace

} // namespace vantoro::bench

int main(int argumentCount, char** arguments) {
    const int minutes = argumentCount == 2 ? std::atoi(arguments[1]) : 0;
    if (minutes < 1) {
        std::cerr << "usage: " << arguments[0] << " MINUTES\n";
        return 2;
    }
    try {
        vantoro::bench::measure(minutes);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
