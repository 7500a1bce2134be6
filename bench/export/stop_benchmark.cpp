// SPDX-License-Identifier: GPL-3.0-or-later

// Measures how long users wait for the file when they stop recordings of several lengths with
// unchanged volumes, compared with an export at the stop.

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "bench/support/table.h"
#include "bench/support/test_movie.h"
#include "engine/recorder/track_keeping.h"
#include "engine/recorder/track_mixing.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::bench {

namespace {

using namespace std::chrono_literals;
using Seconds = std::chrono::duration<double>;

const std::vector<float> volumes{0.9F, 1.0F};

/// This benchmark records faster than real time, so the mix falls behind. The process is idle once
/// the mix has caught up.
void waitUntilTheMixHasCaughtUp() {
    std::clock_t before = -1;
    for (std::clock_t now = std::clock(); now - before > CLOCKS_PER_SEC / 100; now = std::clock()) {
        before = now;
        std::this_thread::sleep_for(1s);
    }
}

void mix(Recording& recording, FileSystem& files, const std::filesystem::path& destination) {
    mixTracks(recording, OutputPlace(files, destination.parent_path(), destination.stem()),
              [](std::size_t track) { return volumes[track]; }, {}, {});
}

template <class Work>
Seconds timeOf(const Work& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::steady_clock::now() - begin;
}

void measure(int minutes) {
    const testing::TemporaryFolder folder;
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    TestMovie movie(toolkit, folder / "movie.mov");
    movie.writer().expectMix(volumes);
    movie.record(minutes);
    waitUntilTheMixHasCaughtUp();
    const Seconds stop = timeOf([&] {
        movie.finish();
        mix(*movie.writer().openRecording(), files, folder / "followed.m4a");
    });
    const Seconds plain = timeOf(
        [&] { mix(*toolkit.openRecording(folder / "movie.mov"), files, folder / "exported.m4a"); });
    printRow(digits(stop.count(), 3) + " s", "0.25 s",
             "stop to final file, " + std::to_string(minutes) + " min of both sources", "",
             "the whole export, " + digits(plain.count(), 2) + " s");
}

void measureTracks() {
    constexpr int minutes = 10;
    const testing::TemporaryFolder folder;
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    TestMovie movie(toolkit, folder / "movie.mov");
    movie.writer().expectMix(volumes);
    movie.record(minutes);
    waitUntilTheMixHasCaughtUp();
    movie.finish();
    const auto recording = movie.writer().openRecording();
    mix(*recording, files, folder / "followed.m4a");
    const Seconds tracks = timeOf([&] {
        keepTracks(*recording, files, folder / "followed.m4a",
                   {.systemAudio = "system audio", .microphone = "microphone"}, {}, {});
    });
    printRow(digits(tracks.count(), 3) + " s", "0.1 s",
             "each source's own file at the stop, " + std::to_string(minutes) + " min of both", "",
             "");
}

} // namespace

} // namespace vantoro::bench

int main(int argumentCount, char** arguments) {
    try {
        const std::span lengths(arguments + 1, arguments + argumentCount);
        for (const char* const minutes : lengths) {
            vantoro::bench::measure(std::atoi(minutes));
        }
        vantoro::bench::measureTracks();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
