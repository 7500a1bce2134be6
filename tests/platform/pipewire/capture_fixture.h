// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/pipewire/capture_service.h"
#include "tests/capture/samples/captured_sound.h"
#include "tests/platform/pipewire/sound_session.h"

namespace vantoro::testing {

/// Captures in the private session, as the recorder does.
class Capture : public ::testing::Test {
protected:
    static StreamConfiguration configurationFor(bool audio, bool microphone) {
        StreamConfiguration configuration;
        configuration.capturesAudio = audio;
        configuration.captureMicrophone = microphone;
        return configuration;
    }

    void start(const StreamConfiguration& configuration = configurationFor(true, true)) {
        stream = service.makeStream({}, configuration, sound);
        if (configuration.capturesAudio) {
            stream->addOutput(StreamOutputType::audio, queue);
        }
        if (configuration.captureMicrophone) {
            stream->addOutput(StreamOutputType::microphone, queue);
        }
        stream->startCapture();
    }

    void startWithMicrophone(const std::string& name) {
        auto configuration = configurationFor(true, true);
        configuration.microphoneCaptureDeviceID = name;
        start(configuration);
    }

    /// What `startCapture` fails with, or an empty text.
    std::string startError(const StreamConfiguration& configuration) {
        try {
            start(configuration);
        } catch (const std::exception& error) {
            return error.what();
        }
        return {};
    }

    void stop() {
        stream->stopCapture();
        queue.sync([] {});
    }

    /// Until the stream has stopped by itself and everything was delivered.
    bool waitForStop() {
        const bool stopped =
            sound.waitUntil([this] { return !sound.stops().empty(); }, std::chrono::seconds(30));
        queue.sync([] {});
        return stopped;
    }

    SoundSession session;
    pipewire::CaptureService service;
    SerialQueue queue{"com.vantoro.capture"};
    CapturedSound sound;
    std::shared_ptr<CaptureStream> stream; // goes first
};

/// The last second, but for the very end: one source is a cycle shorter, and ends in silence.
inline std::span<const float> lastSecond(const std::vector<float>& samples) {
    return std::span(samples).last(52800).first(48000);
}

} // namespace vantoro::testing
