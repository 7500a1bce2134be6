// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "engine/recorder/audio_recorder.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/system_clock.h"
#include "tests/crash/support/heard_tones.h"
#include "tests/support/call_log.h"
#include "tests/support/fake_capture_service.h"
#include "tests/support/fake_permissions.h"

namespace vantoro::testing {

/// A recorder that a test feeds at full speed, with real files on the given disk.
class RecorderOnDisk {
public:
    RecorderOnDisk(FileSystem& fileSystem, std::filesystem::path folder);

    /// The volumes that `stop` mixes with.
    void expectVolumes();
    void start();
    /// Feeds the recorder up to this many frames in total; returns when they are processed.
    void hearUntil(std::int64_t frames);
    std::filesystem::path stop();

    /// Called during `stop`, while the final file is exported.
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
