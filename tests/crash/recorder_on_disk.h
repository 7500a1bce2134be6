// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "engine/audio_recorder.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/system_clock.h"
#include "tests/support/recorder_fakes.h"

namespace vantoro::testing {

/// A recorder that hears what a test lets it hear, as fast as the test goes, and whose files are
/// real ones on the disk that it is given: both sources, a tone each that changes every second.
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

    /// The tone of a second, in Hz.
    static double systemTone(std::int64_t second);
    static double microphoneTone(std::int64_t second);
    static constexpr float amplitude = 0.2F;

private:
    void hear(StreamOutputType type, std::uint32_t channels, std::int64_t frames,
              double (*toneOf)(std::int64_t));

    CallLog log_;
    FakeScreenAccess screen_{log_};
    FakeMicrophoneAccess microphone_{log_};
    FakeShareableContent content_{log_};
    FakeCaptureService capture_{log_};
    ffmpeg::FfmpegToolkit toolkit_;
    posix::SystemClock clock_;
    std::filesystem::path folder_;
    AudioRecorder recorder_;
    std::int64_t heard_ = 0;
};

} // namespace vantoro::testing
