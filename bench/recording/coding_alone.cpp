// SPDX-License-Identifier: GPL-3.0-or-later

// Prints the processor seconds that coding a recording's sound takes.
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
#include "media/coding/aac.h"
#include "media/coding/aac_encoder.h"
#include "platform/ffmpeg/ffmpeg_coding.h"

namespace vantoro::bench {

namespace {

void code(std::span<const float> samples, int channels, int bitRate) {
    media::AacEncoder coder(ffmpeg::coding(), channels, bitRate);
    std::uint64_t bytes = 0;
    const auto count = [&bytes](const media::AacPacket& packet) { bytes += packet.bytes.size(); };
    const auto stride = static_cast<std::size_t>(channels);
    const std::size_t packetSamples = stride * media::packetFrames;
    for (; samples.size() >= packetSamples; samples = samples.subspan(packetSamples)) {
        for (std::size_t channel = 0; channel < stride; ++channel) {
            const auto plane = coder.plane(static_cast<int>(channel));
            for (std::size_t frame = 0; frame < plane.size(); ++frame) {
                plane[frame] = samples[(frame * stride) + channel];
            }
        }
        coder.encode(media::packetFrames, count);
    }
    coder.finish(count);
    if (bytes == 0) {
        throw std::runtime_error("nothing was coded");
    }
}

void measure(const char* systemPath, const char* microphonePath) {
    const auto system = readSamples(systemPath);
    const auto microphone = readSamples(microphonePath);
    const std::clock_t begin = std::clock();
    code(system, 2, 192000);
    code(microphone, 1, 96000);
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
