// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "engine/recorder/audio_recorder.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/system_clock.h"
#include "tests/crash/support/heard_tones.h"
#include "tests/support/recorder_fakes.h"

namespace vantoro::testing {

/// A recorder that hears what a test lets it hear, as fast as the test goes, and whose files are
/// real ones on the disk that it is given.
class RecorderOnDisk {
public:
    RecorderOnDisk(FileSystem& fileSystem, std::filesystem::path folder);

    /// Those that `stop` mixes with.
    void expectVolumes();
    void start();
    /// Hears from where it was on until that many frames in all, and has dealt with all of them.
    void hearUntil(std::int64_t frames);
    std::filesystem::path stop();

    /// Called in the middle of `stop`, when the final file is being exported.
    void whileExporting(std::function<void()> action);

private:
    CallLog log_;
    FakeCaptureAccess captureAccess_{log_};
    FakeMicrophoneAccess microphone_{log_};
    FakeCaptureService capture_{log_};
    HeardTones tones_{capture_};
    ffmpeg::FfmpegToolkit toolkit_;
    posix::SystemClock clock_;
    std::filesystem::path folder_;
    AudioRecorder recorder_;
};

} // namespace vantoro::testing
