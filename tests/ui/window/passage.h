// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <ostream>
#include <string>

#include <QtWidgets/QApplication>

#include "tests/ui/window/main_window_fixture.h"

namespace vantoro::testing {

/// A font as a desktop sets it.
struct DesktopFont {
    std::string name; ///< as in the pictures' names
    QString family;
    double points = 0;

    friend void PrintTo(const DesktopFont& font, std::ostream* out) { *out << font.name; }
};

/// One window, led through all its states as a user does it.
class Passage : public MainWindowTest {
protected:
    using Look = std::function<void(const std::string& state)>;

    void SetUp() override {
        usual_ = QApplication::font();
        devices.list = {{"built-in", "Built-in Audio Analog Stereo"}, {"headset", "Headset"}};
        recorder.recording = "/music/Vantoro 2026-11-21 14.30.05.m4a";
    }

    void TearDown() override {
        MainWindowTest::TearDown();
        QApplication::setPalette(QPalette());
        QApplication::setFont(usual_);
    }

    static void setFont(const DesktopFont& font) {
        QFont set(font.family);
        set.setPointSizeF(font.points);
        ASSERT_EQ(QFontInfo(set).family(), font.family)
            << "tools/install-dependencies --tests installs it";
        QApplication::setFont(set);
    }

    /// Opens the window anew.
    void openIn(const std::string& spoken) {
        MainWindowTest::TearDown();
        model.reset();
        preferences = preferencesIn(spoken);
        show();
    }

    /// Calls back in each state, from idle to failed, once the window has settled.
    void pass(const Look& look) {
        const auto reach = [&](const std::string& name, Case expected) {
            ASSERT_EQ(state(), expected);
            settleEvents();
            look(name);
        };
        reach("idle", Case::idle);
        model->startRecording();
        reach("preparing", Case::preparing);
        scheduler.settle();
        reportLevel(AudioLevelSource::systemAudio, 0.62F);
        reportLevel(AudioLevelSource::microphone, 0.31F);
        reach("recording", Case::recording);
        model->toggleRecording();
        scheduler.runMain();
        reach("processing", Case::processing);
        scheduler.settle();
        reach("completed", Case::completed);
        recorder.startError = failure(RecordingError::Case::screenPermissionDenied);
        model->startRecording();
        scheduler.settle();
        model->dismissMessage(); // it would cover the window
        reach("failed", Case::failed);
        recorder.startError = nullptr;
    }

private:
    QFont usual_;
};

} // namespace vantoro::testing
