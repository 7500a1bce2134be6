// SPDX-License-Identifier: GPL-3.0-or-later

#include <chrono>
#include <csignal>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

#include <unistd.h>

#include "engine/recorder/salvage.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "tests/crash/support/recorder_on_disk.h"

// dying_recorder FOLDER FRAMES [safe]: records that many frames and dies as by kill -9, either
// immediately or ("safe") when all fragments due are on the disk.

namespace vantoro::testing {

namespace {

constexpr std::int64_t second = 48000;
constexpr std::int64_t packet = 1024;
constexpr std::int64_t heldByTheCoder = 10240; // frames, at most

/// Frames in the fragments due after this many recorded frames: a second, then ten each, rounded up
/// to whole packets.
std::int64_t framesDue(std::int64_t heard) {
    std::int64_t due = 0;
    for (std::int64_t end = second; end + packet <= heard - heldByTheCoder; end += 10 * second) {
        due = (end + packet - 1) / packet * packet;
    }
    return due;
}

std::int64_t framesOnDisk(FileSystem& fileSystem, const std::filesystem::path& folder) {
    ffmpeg::FfmpegToolkit toolkit(fileSystem);
    const auto files = incompleteRecordings(fileSystem.list(folder));
    if (files.empty()) {
        return 0;
    }
    try {
        // The others are older.
        const auto duration = toolkit.openRecording(files.back())->duration();
        return duration.isValid() ? duration.inUnitsOf(48000) : 0;
    } catch (const std::exception&) {
        return 0; // not even the header exists
    }
}

int run(const std::filesystem::path& folder, std::int64_t frames, bool whenSafe) {
    posix::PosixFileSystem fileSystem;
    RecorderOnDisk recorder(fileSystem, folder);
    recorder.start();
    recorder.hearUntil(frames);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (whenSafe && framesOnDisk(fileSystem, folder) < framesDue(frames)) {
        if (std::chrono::steady_clock::now() > deadline) {
            std::cerr << "The disk does not follow.\n";
            return 1;
        }
    }
    return kill(getpid(), SIGKILL);
}

} // namespace

} // namespace vantoro::testing

int main(int argc, char** argv) {
    if (argc < 3) {
        return 2;
    }
    return vantoro::testing::run(argv[1], std::stoll(argv[2]),
                                 argc > 3 && std::string(argv[3]) == "safe");
}
