// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/crash/support/recorder_on_disk.h"

#include <utility>

namespace vantoro::testing {

namespace {

constexpr float systemVolume = 0.9F;
constexpr float microphoneVolume = 1;

} // namespace

RecorderOnDisk::RecorderOnDisk(FileSystem& fileSystem, std::filesystem::path folder)
    : toolkit_(fileSystem),
      folder_(std::move(folder)),
      recorder_({captureAccess_, microphone_, capture_, toolkit_, fileSystem, clock_}) {}

void RecorderOnDisk::expectVolumes() {
    recorder_.expectVolumes(systemVolume, microphoneVolume);
}

void RecorderOnDisk::start() {
    recorder_.start({true, true, std::nullopt, folder_});
}

void RecorderOnDisk::hearUntil(std::int64_t frames) {
    tones_.until(frames);
}

std::filesystem::path RecorderOnDisk::stop() {
    return recorder_.stop(systemVolume, microphoneVolume);
}

void RecorderOnDisk::whileExporting(std::function<void()> action) {
    recorder_.onExportProgress = [action = std::move(action)](double fraction) {
        if (fraction == 0) {
            action();
        }
    };
}

} // namespace vantoro::testing
