// SPDX-License-Identifier: GPL-3.0-or-later

// Measures the cost of exporting a recording, compared with the `ffmpeg` program making the same
// mix with its default and its fast encoder; the cost of salvaging it; and how peak memory grows
// with the length.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/support/child_process.h"
#include "bench/support/table.h"
#include "bench/support/test_movie.h"
#include "engine/recorder/salvage.h"
#include "engine/recorder/track_mixing.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"
#include "tests/support/temporary_folder.h"

namespace vantoro::bench {

namespace {

constexpr float systemVolume = 0.9F;
constexpr float microphoneVolume = 1.0F;

void exportMovie(const std::filesystem::path& movie, const std::filesystem::path& destination) {
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto recording = toolkit.openRecording(movie);
    mixTracks(*recording, OutputPlace(files, destination.parent_path(), destination.stem()),
              recordingVolumes(true, systemVolume, microphoneVolume), {}, {});
}

void salvageFolder(const std::filesystem::path& folder) {
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const posix::SystemClock clock;
    if (recoverIncompleteRecordings({toolkit, files, clock}, folder, {}, {}, {})
            .recordings.size() != 1) {
        throw std::runtime_error("the recording was not salvaged");
    }
}

/// The movie as a killed writer leaves it: cut off in its last fragment.
ProcessCost measureSalvage(const std::string& self, const std::filesystem::path& movie,
                           const std::filesystem::path& folder) {
    std::filesystem::create_directory(folder);
    const auto unfinished = folder / "movie.partial.mov";
    std::filesystem::rename(movie, unfinished);
    constexpr std::uintmax_t lost = 100'000;
    std::filesystem::resize_file(unfinished, std::filesystem::file_size(unfinished) - lost);
    return runProcess({self, "--salvage", folder.string()});
}

/// Runs the export in its own process, to measure its memory alone.
ProcessCost measureExport(const std::string& self, const std::filesystem::path& movie,
                          const std::filesystem::path& destination) {
    return runProcess({self, "--export", movie.string(), destination.string()});
}

ProcessCost measureFfmpeg(const std::filesystem::path& movie,
                          const std::filesystem::path& destination, const std::string& method) {
    const std::string graph = "[0:a:0]volume=0.9[a];[0:a:1]volume=1.0[b];"
                              "[a][b]amix=inputs=2:duration=longest:normalize=0";
    return runProcess({"ffmpeg", "-nostdin", "-v", "error", "-y", "-i", movie.string(),
                       "-filter_complex", graph, "-c:a", "aac", "-aac_coder", method, "-b:a",
                       "256k", "-ac", "2", destination.string()});
}

std::string seconds(double value) {
    return digits(value, 2) + " s";
}

std::string megabytes(double value) {
    return digits(value, 1) + " MB";
}

void printTimes(const std::string& aim, const std::string& work, double ours, double other,
                const std::string& of) {
    printRow(times(ours, other), aim, work, seconds(ours), of + ", " + seconds(other));
}

void compare(const std::string& self, int minutes) {
    const testing::TemporaryFolder folder;
    const auto movie = folder / "short.mov";
    const std::string length = std::to_string(minutes) + " min of both sources";
    recordTestMovie(movie, minutes);
    const ProcessCost ours = measureExport(self, movie, folder / "ours.m4a");
    const ProcessCost usual = measureFfmpeg(movie, folder / "theirs.m4a", "twoloop");
    const ProcessCost fast = measureFfmpeg(movie, folder / "theirs.m4a", "fast");
    printTimes("0.22 ×", "export of " + length, ours.wallSeconds, usual.wallSeconds,
               "`ffmpeg`, its default coder");
    printTimes("0.45 ×", "the same", ours.wallSeconds, fast.wallSeconds,
               "`ffmpeg`, its fast coder");
    printTimes("", "the same, processor time", ours.cpuSeconds, usual.cpuSeconds,
               "`ffmpeg`, its default coder");
    const ProcessCost salvage = measureSalvage(self, movie, folder / "both");
    printTimes("", "salvage of the same", salvage.wallSeconds, ours.wallSeconds, "its export");
    recordTestMovie(folder / "one.mov", minutes, TestSources::microphone);
    const ProcessCost copy = measureSalvage(self, folder / "one.mov", folder / "one");
    printRow(seconds(copy.wallSeconds), "0.5 s",
             "salvage of " + std::to_string(minutes) + " min of one source at its own volume", "",
             "");
    recordTestMovie(folder / "long.mov", 4 * minutes);
    const ProcessCost longer = measureExport(self, folder / "long.mov", folder / "long.m4a");
    printRow(digits(longer.peakMegabytes - ours.peakMegabytes, 1) + " MB", "8 MB",
             "memory of an export at most, of four times the length more",
             megabytes(longer.peakMegabytes), megabytes(ours.peakMegabytes));
}

int run(std::span<char*> arguments) {
    if (arguments.size() == 4 && std::string_view(arguments[1]) == "--export") {
        exportMovie(arguments[2], arguments[3]);
        return EXIT_SUCCESS;
    }
    if (arguments.size() == 3 && std::string_view(arguments[1]) == "--salvage") {
        salvageFolder(arguments[2]);
        return EXIT_SUCCESS;
    }
    int minutes = 60;
    if (arguments.size() == 3 && std::string_view(arguments[1]) == "--minutes") {
        minutes = std::atoi(arguments[2]);
    } else if (arguments.size() != 1) {
        minutes = 0;
    }
    if (minutes < 1) {
        std::cerr << "usage: " << arguments[0] << " [--minutes N]\n";
        return 2;
    }
    compare(arguments[0], minutes);
    return EXIT_SUCCESS;
}

} // namespace

} // namespace vantoro::bench

int main(int argumentCount, char** arguments) {
    try {
        return vantoro::bench::run({arguments, static_cast<std::size_t>(argumentCount)});
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
