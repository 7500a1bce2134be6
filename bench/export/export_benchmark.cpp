// Measures what exporting a recording costs, side by side with the `ffmpeg` program making the same
// mix with its default coder, what salvaging it costs, and how peak memory grows with length.

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/export/child_process.h"
#include "bench/export/temporary_folder.h"
#include "bench/export/test_movie.h"
#include "engine/salvage.h"
#include "engine/track_mixing.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"

namespace vantoro::bench {

namespace {

constexpr float systemVolume = 0.9F;
constexpr float microphoneVolume = 1.0F;

void exportMovie(const std::filesystem::path& movie, const std::filesystem::path& destination) {
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const auto asset = toolkit.openAsset(movie);
    mixTracks(toolkit, files, *asset, destination,
              recordingVolumes(true, systemVolume, microphoneVolume), {});
}

void salvageFolder(const std::filesystem::path& folder) {
    posix::PosixFileSystem files;
    ffmpeg::FfmpegToolkit toolkit(files);
    const posix::SystemClock clock;
    if (recoverIncompleteRecordings({toolkit, files, clock}, folder, {}, {}).size() != 1) {
        throw std::runtime_error("the recording was not salvaged");
    }
}

/// The same movie as its writer leaves it when it dies: cut off within its last fragment.
ProcessCost measureSalvage(const std::string& self, const std::filesystem::path& movie,
                           const std::filesystem::path& folder) {
    std::filesystem::create_directory(folder);
    const auto unfinished = folder / "movie.partial.mov";
    std::filesystem::rename(movie, unfinished);
    constexpr std::uintmax_t lost = 100'000;
    std::filesystem::resize_file(unfinished, std::filesystem::file_size(unfinished) - lost);
    return runProcess({self, "--salvage", folder.string()});
}

/// In a process of its own, whose memory then is the export's alone.
ProcessCost measureExport(const std::string& self, const std::filesystem::path& movie,
                          const std::filesystem::path& destination) {
    return runProcess({self, "--export", movie.string(), destination.string()});
}

ProcessCost measureFfmpeg(const std::filesystem::path& movie,
                          const std::filesystem::path& destination) {
    const std::string graph = "[0:a:0]volume=0.9[a];[0:a:1]volume=1.0[b];"
                              "[a][b]amix=inputs=2:duration=longest:normalize=0";
    return runProcess({"ffmpeg", "-nostdin", "-v", "error", "-y", "-i", movie.string(),
                       "-filter_complex", graph, "-c:a", "aac", "-b:a", "256k", "-ac", "2",
                       destination.string()});
}

void printHeader() {
    std::cout << std::left << std::setw(44) << "" << std::right << std::setw(10) << "ours"
              << std::setw(11) << "other" << std::setw(9) << "ratio" << '\n'
              << std::flush;
}

void printRow(const std::string& name, double ours, double other) {
    std::cout << std::fixed << std::setprecision(2) << std::left << std::setw(44) << name
              << std::right << std::setw(10) << ours << std::setw(11) << other << std::setw(9)
              << ours / other << '\n'
              << std::flush;
}

void compare(const std::string& self, int minutes) {
    const TemporaryFolder folder;
    const std::string length = std::to_string(minutes) + " min";
    recordTestMovie(folder / "short.mov", minutes);
    const ProcessCost ours = measureExport(self, folder / "short.mov", folder / "ours.m4a");
    const ProcessCost theirs = measureFfmpeg(folder / "short.mov", folder / "theirs.m4a");
    printHeader();
    printRow("export of " + length + ", ffmpeg program: wall s", ours.wallSeconds,
             theirs.wallSeconds);
    printRow("export of " + length + ", ffmpeg program: CPU s", ours.cpuSeconds, theirs.cpuSeconds);
    const ProcessCost salvage = measureSalvage(self, folder / "short.mov", folder / "both");
    printRow("salvage of " + length + ", its export: wall s", salvage.wallSeconds,
             ours.wallSeconds);
    recordTestMovie(folder / "one.mov", minutes, TestSources::microphone);
    const ProcessCost copy = measureSalvage(self, folder / "one.mov", folder / "one");
    printRow("the same of one source, of both: wall s", copy.wallSeconds, salvage.wallSeconds);
    recordTestMovie(folder / "long.mov", 4 * minutes);
    const ProcessCost longer = measureExport(self, folder / "long.mov", folder / "long.m4a");
    printRow("memory at most: MB; other: four times as long", ours.peakMegabytes,
             longer.peakMegabytes);
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
