// SPDX-License-Identifier: GPL-3.0-or-later

// Makes the final file of a recording of the given sound.
// Usage: recorded_mix SYSTEM MICROPHONE TEMPORARY FINAL; the first two are 32-bit float at 48 kHz,
// the system's interleaved stereo, the microphone's mono.

#include <cstdlib>
#include <exception>
#include <future>
#include <iostream>
#include <span>
#include <stdexcept>
#include <vector>

#include "bench/support/samples.h"
#include "engine/recorder/track_mixing.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"

namespace vantoro::bench {

namespace {

constexpr std::int64_t framesPerSecond = 48000;
constexpr std::size_t bufferFrames = 960;
constexpr float systemVolume = 0.9F;
constexpr float microphoneVolume = 1.0F;

/// The next buffer of a source, in planar format.
void append(RecordingTrack& track, std::span<const float> samples, std::size_t channels,
            std::size_t frame) {
    std::vector<float> planes(bufferFrames * channels);
    for (std::size_t i = 0; i < planes.size(); ++i) {
        planes[(i % channels * bufferFrames) + (i / channels)] = samples[(frame * channels) + i];
    }
    const bool taken = track.append(
        {.dataIsReady = true,
         .frameCount = bufferFrames,
         .presentationTime = {static_cast<std::int64_t>(frame), framesPerSecond},
         .format = AudioStreamDescription{.sampleRate = framesPerSecond,
                                          .channelsPerFrame = static_cast<std::uint32_t>(channels)},
         .samples = planes});
    if (!taken) {
        throw std::runtime_error("the recording cannot be written");
    }
}

RecordingTrack& trackOf(RecordingWriter& writer, TrackFormat format) {
    RecordingTrack* const track = writer.addTrack(format);
    if (track == nullptr) {
        throw std::runtime_error("the recording cannot be coded");
    }
    return *track;
}

void run(std::span<char*> arguments) {
    const auto system = readSamples(arguments[1]);
    const auto microphone = readSamples(arguments[2]);
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto writer = toolkit.makeWriter(arguments[3], {}, {});
    RecordingTrack& systemTrack = trackOf(*writer, {.channels = 2, .bitRate = 192000});
    RecordingTrack& microphoneTrack = trackOf(*writer, {.channels = 1, .bitRate = 96000});
    if (!writer->start(zeroTime)) {
        throw std::runtime_error("the recording cannot be created");
    }
    for (std::size_t frame = 0; frame + bufferFrames <= microphone.size(); frame += bufferFrames) {
        append(systemTrack, system, 2, frame);
        append(microphoneTrack, microphone, 1, frame);
    }
    std::promise<void> finished;
    writer->finish([&finished] { finished.set_value(); });
    finished.get_future().wait();
    const auto recording = writer->openRecording();
    const std::filesystem::path destination = arguments[4];
    mixTracks(*recording, OutputPlace(files, destination.parent_path(), destination.stem()),
              recordingVolumes(true, systemVolume, microphoneVolume), {}, {});
}

} // namespace

} // namespace vantoro::bench

int main(int argumentCount, char** arguments) {
    if (argumentCount != 5) {
        std::cerr << "usage: " << arguments[0] << " SYSTEM MICROPHONE TEMPORARY FINAL\n";
        return 2;
    }
    try {
        vantoro::bench::run({arguments, static_cast<std::size_t>(argumentCount)});
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
