// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "control/recording_view_model.h"
#include "tests/support/fake_desktop.h"
#include "tests/support/fake_permissions.h"
#include "tests/support/fake_power.h"
#include "tests/support/fake_recorder.h"
#include "tests/support/fake_scheduler.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {

using Case = RecordingState::Case;
using Property = RecordingProperties::Property;
using Key = L10n::Key;

/// A view model with fakes; only the test causes events.
struct ViewModelWorld {
    MemoryPreferences preferences = preferencesIn("en");
    FakeScheduler scheduler;
    FakePower power;
    FakeAudioDevices devices;
    CallLog log;
    FakeMicrophoneAccess microphone{log};
    FakeOpener opener;
    FakeFolderDialog folderDialog;
    AudioLevelStore levels;
    RecorderScript recorder;
    std::unique_ptr<RecordingViewModel> model;

    ControlPlatform platform() {
        return {.scheduler = scheduler,
                .power = power,
                .audioDevices = devices,
                .microphoneAccess = microphone,
                .opener = opener,
                .folderDialog = folderDialog,
                .preferences = preferences,
                .levels = levels,
                .defaultRecordingFolder = "/home/somebody/Movies/Vantoro"};
    }

    /// Launches the program and finishes the first survey; the launch salvage waits for a task
    /// thread.
    void launch() {
        model = std::make_unique<RecordingViewModel>(std::make_unique<FakeRecorder>(recorder),
                                                     platform());
        scheduler.runTask();
    }

    /// Also finishes the launch salvage, which finds nothing.
    void launchAndSettle() {
        launch();
        scheduler.settle();
    }

    const RecordingProperties::Values& values() const { return model->values(); }

    Case state() const { return values().state.which(); }

    std::string message() const { return values().errorMessage.value_or("(none)"); }

    std::string lastRecording() const {
        return values().lastRecordingURL.value_or("(none)").string();
    }

    std::string text(Key key) const { return L10n(preferences).text(key); }

    /// Runs a new survey.
    void refresh() {
        model->refreshDevicesAndPermissions();
        scheduler.settle();
    }

    void record() {
        model->startRecording();
        scheduler.settle();
        ASSERT_EQ(state(), Case::recording);
    }

    void reportLevel(AudioLevelSource source, float level) {
        recorder.recorder->onAudioLevel(source, level);
        scheduler.runMain();
    }

    void interruptCapture() {
        recorder.recorder->onCaptureInterrupted(
            std::make_exception_ptr(std::runtime_error("connection lost")));
        scheduler.runMain();
    }

    void reportRoom(RoomAdvice advice, std::int64_t minutes = 0) {
        recorder.recorder->onDiskRoom({.advice = advice, .minutesLeft = minutes});
        scheduler.runMain();
    }

    /// Launches and reaches the state as a user would; of the recorder's tasks, only the state's
    /// own is pending.
    void lead(Case to) {
        launchAndSettle();
        leadFromIdle(to);
        ASSERT_EQ(state(), to);
    }

    void leadFromIdle(Case to) {
        if (to == Case::idle) {
            return;
        }
        model->startRecording();
        if (to == Case::preparing) {
            return;
        }
        if (to == Case::failed) {
            recorder.startError = std::make_exception_ptr(std::runtime_error("no such luck"));
        }
        scheduler.settle();
        recorder.startError = nullptr;
        if (to == Case::processing || to == Case::completed) {
            model->toggleRecording();
            scheduler.runMain();
        }
        if (to == Case::completed) {
            scheduler.settle();
        }
    }
};

class ViewModelTest : public ::testing::Test, protected ViewModelWorld {};

inline std::exception_ptr failure(const std::string& text) {
    return std::make_exception_ptr(std::runtime_error(text));
}

inline std::exception_ptr failure(RecordingError::Case which) {
    return std::make_exception_ptr(RecordingError(which));
}

} // namespace vantoro::testing
