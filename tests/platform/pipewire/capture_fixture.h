// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/pipewire/pipewire_capture.h"
#include "tests/capture/samples/captured_sound.h"
#include "tests/platform/pipewire/sound_session.h"

namespace vantoro::testing {

/// Captures in the private session like the recorder.
class Capture : public ::testing::Test {
protected:
    static constexpr CaptureRequest bothSources{.systemAudio = true, .microphone = true};
    static constexpr CaptureRequest systemAudioOnly{.systemAudio = true};
    static constexpr CaptureRequest microphoneOnly{.microphone = true};

    void start(const CaptureRequest& request = bothSources) {
        stream = service.makeStream(request, queue, sound);
        stream->startCapture();
    }

    void startWithMicrophone(const std::string& name) {
        start({.systemAudio = true, .microphone = true, .microphoneID = name});
    }

    /// The error of `startCapture`, or an empty string.
    std::string startError(const CaptureRequest& request) {
        try {
            start(request);
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }

    void stop() {
        stream->stopCapture();
        queue.sync([] {});
    }

    /// Waits until the stream has stopped on its own and delivered everything.
    bool waitForStop() {
        const bool stopped =
            sound.waitUntil([this] { return !sound.stops().empty(); }, std::chrono::seconds(30));
        queue.sync([] {});
        return stopped;
    }

    SoundSession session;
    pipewire::PipeWireCapture service;
    SerialQueue queue{"com.vantoro.capture"};
    CapturedSound sound;
    std::shared_ptr<CaptureStream> stream; // destroyed first
};

/// The last second without its very end: one source is a cycle shorter and ends in silence.
inline std::span<const float> lastSecond(const std::vector<float>& samples) {
    return std::span(samples).last(52800).first(48000);
}

} // namespace vantoro::testing
