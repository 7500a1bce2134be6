// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/recorder/audio_recorder.h"
#include "tests/support/call_log.h"
#include "tests/support/fake_capture_service.h"
#include "tests/support/fake_clock.h"
#include "tests/support/fake_media_toolkit.h"
#include "tests/support/fake_permissions.h"
#include "tests/support/memory_file_system.h"

namespace vantoro::testing {

/// A recorder with fake ports.
class RecorderTest : public ::testing::Test {
protected:
    const std::filesystem::path folder = "/recordings";
    const std::filesystem::path finalFile = folder / "Vantoro-2025-03-01-093015.m4a";

    CallLog log;
    FakeCaptureAccess captureAccess{log};
    FakeMicrophoneAccess microphone{log};
    FakeCaptureService capture{log};
    MemoryFileSystem fileSystem{log};
    FakeMediaToolkit toolkit{log, fileSystem};
    FakeClock clock;
    AudioRecorder recorder{{captureAccess, microphone, capture, toolkit, fileSystem, clock}};

    /// The temporary recordings that are there.
    std::vector<std::filesystem::path> temporaryFiles() const {
        std::vector<std::filesystem::path> found;
        std::ranges::copy_if(fileSystem.paths(), std::back_inserter(found), [](const auto& path) {
            return path.string().ends_with(".partial.mov");
        });
        return found;
    }

    RecordingOptions bothSources() const { return {true, true, std::nullopt, folder}; }

    RecordingOptions microphoneOnly() const { return {false, true, std::nullopt, folder}; }

    RecordingOptions systemAudioOnly() const { return {true, false, std::nullopt, folder}; }

    /// The case of the `RecordingError` that `action` throws, if any.
    template <class Action>
    static std::optional<RecordingError::Case> errorOf(Action action) {
        try {
            action();
        } catch (const RecordingError& error) {
            return error.which();
        }
        return std::nullopt;
    }

    /// The text of the exception that `action` throws, if any.
    template <class Action>
    static std::optional<std::string> textOf(Action action) {
        try {
            action();
        } catch (const std::exception& error) {
            return error.what();
        }
        return std::nullopt;
    }

    /// Expects the state of a new recorder: nothing to stop, ready to record.
    void expectIdle() {
        EXPECT_EQ(capture.liveStreams, 0);
        EXPECT_EQ(errorOf([this] { recorder.stop(1, 1); }), RecordingError::Case::noAudioCaptured);
        capture.startError = nullptr;
        capture.stopError = nullptr;
        capture.makeStreamError = nullptr;
        toolkit.writing = {};
        toolkit.exporting = {};
        recorder.start(bothSources());
        capture.deliver(bufferAt(0), AudioLevelSource::systemAudio);
        EXPECT_NO_THROW(recorder.stop(1, 1));
    }
};

inline std::string messageOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& exception) {
        return exception.what();
    }
}

} // namespace vantoro::testing
