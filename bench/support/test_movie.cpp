// SPDX-License-Identifier: GPL-3.0-or-later

#include "bench/support/test_movie.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <future>
#include <numbers>
#include <random>
#include <span>
#include <stdexcept>
#include <vector>

#include "engine/failure.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"

namespace vantoro::bench {

namespace {

constexpr std::int64_t framesPerSecond = 48000;
constexpr std::int64_t loopFrames = 60 * framesPerSecond;
constexpr std::int64_t bufferFrames = 960;

using Channel = std::vector<float>; // one loop

/// Chords of decaying partials over a beat of noise.
Channel makeMusic(unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> noise(-1, 1);
    std::uniform_int_distribution<int> step(0, 24);
    Channel channel(loopFrames);
    constexpr std::int64_t noteFrames = framesPerSecond / 4;
    for (std::int64_t begin = 0; begin < loopFrames; begin += noteFrames) {
        const double base = 110 * std::pow(2, step(random) / 12.0);
        for (std::int64_t i = 0; i < noteFrames; ++i) {
            const double time = static_cast<double>(i) / framesPerSecond;
            double sample = 0.1 * noise(random) * std::exp(-time * 30);
            for (int partial = 1; partial <= 8; ++partial) {
                sample += 0.2 / partial * std::exp(-time * (1 + partial)) *
                          std::sin(2 * std::numbers::pi * base * partial * time);
            }
            channel[static_cast<std::size_t>(begin + i)] =
                static_cast<float>(sample) + (0.001F * noise(random));
        }
    }
    return channel;
}

/// Buzzing and hissing syllables with pauses between, in a room that is not quite silent.
Channel makeSpeech() {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> noise(-1, 1);
    Channel channel(loopFrames);
    double phase = 0;
    for (std::int64_t i = 0; i < loopFrames; ++i) {
        const double time = static_cast<double>(i) / framesPerSecond;
        const double syllable = std::max(0.0, std::sin(2 * std::numbers::pi * 3.1 * time));
        const double pitch = 120 + (30 * std::sin(2 * std::numbers::pi * 0.7 * time));
        phase += pitch / framesPerSecond;
        double voice = 0;
        for (int partial = 1; partial <= 12; ++partial) {
            voice += std::sin(2 * std::numbers::pi * phase * partial) / partial;
        }
        const double hiss = std::max(0.0, std::sin(2 * std::numbers::pi * 1.3 * time)) * 0.2;
        channel[static_cast<std::size_t>(i)] = static_cast<float>(
            (0.15 * syllable * voice) + (((0.1 * syllable * hiss) + 0.001) * noise(random)));
    }
    return channel;
}

void append(RecordingTrack& track, std::span<const Channel> channels, std::int64_t frame) {
    std::vector<float> samples;
    const std::int64_t place = frame % loopFrames;
    for (const Channel& channel : channels) {
        samples.insert(samples.end(), channel.begin() + place,
                       channel.begin() + place + bufferFrames);
    }
    const SampleBuffer buffer{
        .dataIsReady = true,
        .frameCount = bufferFrames,
        .presentationTime = {frame, framesPerSecond},
        .format =
            AudioStreamDescription{.sampleRate = framesPerSecond,
                                   .channelsPerFrame = static_cast<std::uint32_t>(channels.size())},
        .samples = samples};
    if (!track.append(buffer)) {
        throw std::runtime_error("the test movie cannot be written");
    }
}

} // namespace

TestMovie::TestMovie(MediaToolkit& toolkit, const std::filesystem::path& location,
                     TestSources sources)
    : writer_(toolkit.makeWriter(location, {}, {})),
      system_(sources == TestSources::both ? writer_->addTrack({.channels = 2, .bitRate = 192000})
                                           : nullptr),
      microphone_(writer_->addTrack({.channels = 1, .bitRate = 96000})) {
    if (microphone_ == nullptr || !writer_->start(zeroTime)) {
        throw std::runtime_error("the test movie cannot be created");
    }
}

void TestMovie::record(int minutes) {
    const std::array music{makeMusic(1), makeMusic(2)};
    const std::array speech{makeSpeech()};
    const std::int64_t frames = std::int64_t{minutes} * 60 * framesPerSecond;
    for (std::int64_t frame = 0; frame < frames; frame += bufferFrames) {
        if (system_ != nullptr) {
            append(*system_, music, frame);
        }
        append(*microphone_, speech, frame);
    }
}

void TestMovie::finish() {
    std::promise<void> finished;
    writer_->finish([&finished] { finished.set_value(); });
    finished.get_future().wait();
    if (writer_->status() != WriterStatus::completed) {
        throw std::runtime_error(whatOf(writer_->error()));
    }
}

void recordTestMovie(const std::filesystem::path& location, int minutes, TestSources sources) {
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    TestMovie movie(toolkit, location, sources);
    movie.record(minutes);
    movie.finish();
}

} // namespace vantoro::bench
