// SPDX-License-Identifier: GPL-3.0-or-later

// Prints the processor seconds that encoding a recording's sound takes.
// Usage: coding_alone SYSTEM MICROPHONE; files of 32-bit float at 48 kHz, the system's interleaved
// stereo, the microphone's mono.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <span>
#include <stdexcept>
#include <vector>

#include "bench/support/samples.h"
#include "media/codec/aac.h"
#include "media/codec/aac_encoder.h"
#include "platform/ffmpeg/ffmpeg_codec.h"

namespace vantoro::bench {

namespace {

void encode(std::span<const float> samples, int channels, int bitRate) {
    media::AacEncoder encoder(ffmpeg::codec(), channels, bitRate);
    std::uint64_t bytes = 0;
    const auto count = [&bytes](const media::AacPacket& packet) { bytes += packet.bytes.size(); };
    const auto stride = static_cast<std::size_t>(channels);
    const std::size_t packetSamples = stride * media::packetFrames;
    for (; samples.size() >= packetSamples; samples = samples.subspan(packetSamples)) {
        for (std::size_t channel = 0; channel < stride; ++channel) {
            const auto plane = encoder.plane(static_cast<int>(channel));
            for (std::size_t frame = 0; frame < plane.size(); ++frame) {
                plane[frame] = samples[(frame * stride) + channel];
            }
        }
        encoder.encode(media::packetFrames, count);
    }
    encoder.finish(count);
    if (bytes == 0) {
        throw std::runtime_error("nothing was coded");
    }
}

void measure(const char* systemPath, const char* microphonePath) {
    const auto system = readSamples(systemPath);
    const auto microphone = readSamples(microphonePath);
    const std::clock_t begin = std::clock();
    encode(system, 2, 192000);
    encode(microphone, 1, 96000);
    std::cout << static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC << '\n';
}

} // namespace

} // namespace vantoro::bench

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: " << arguments[0] << " SYSTEM MICROPHONE\n";
        return 2;
    }
    try {
        vantoro::bench::measure(arguments[1], arguments[2]);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
