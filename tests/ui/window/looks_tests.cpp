// SPDX-License-Identifier: GPL-3.0-or-later

#include <array>

#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>

#include "tests/ui/window/clipping.h"
#include "tests/ui/window/lights.h"
#include "tests/ui/window/main_window_fixture.h"

// The pictures in `screenshots` are for visual inspection.

namespace vantoro::testing {
namespace {

/// A view of the window, and how to get there.
struct Scene {
    std::string name;
    Case state = Case::idle;
    bool allowed = true;
    AuthorizationStatus microphone = AuthorizationStatus::authorized;
    bool hasMicrophones = true;
    SourceCondition microphoneCondition = SourceCondition::delivering;
    SourceCondition systemAudioCondition = SourceCondition::delivering;
};

const std::vector<Scene> scenes{
    {.name = "idle"},
    {.name = "preparing", .state = Case::preparing},
    {.name = "recording", .state = Case::recording},
    {.name = "processing", .state = Case::processing},
    {.name = "completed", .state = Case::completed},
    {.name = "failed", .state = Case::failed},
    {.name = "denied", .allowed = false, .microphone = AuthorizationStatus::denied},
    {.name = "undetermined", .microphone = AuthorizationStatus::notDetermined},
    {.name = "no-microphone", .hasMicrophones = false},
    {.name = "muted", .state = Case::recording, .microphoneCondition = SourceCondition::muted},
    {.name = "coded", .state = Case::recording, .systemAudioCondition = SourceCondition::coded},
};

class LooksTest : public MainWindowTest {
protected:
    void SetUp() override {
        usual_ = QApplication::font();
        std::filesystem::create_directories(folder);
    }

    void TearDown() override {
        MainWindowTest::TearDown();
        QApplication::setPalette(QPalette());
        QApplication::setFont(usual_);
    }

    void enlargeText(double factor) const {
        auto font = usual_;
        font.setPointSizeF(font.pointSizeF() * factor);
        QApplication::setFont(font);
    }

    void stage(const Scene& scene, const std::string& spoken) {
        MainWindowTest::TearDown();
        model.reset();
        preferences = preferencesIn(spoken);
        devices.mayCapture = scene.allowed;
        microphone.current = scene.microphone;
        devices.list = {{"built-in", "Built-in Audio Analog Stereo"}, {"headset", "Headset"}};
        if (!scene.hasMicrophones) {
            devices.list.clear();
        }
        recorder.recording = "/music/Vantoro 2026-11-21 14.30.05.m4a";
        lead(scene.state);
        if (scene.state == Case::failed) {
            model->dismissMessage(); // it would cover the window
        }
        show();
        if (scene.state == Case::recording) {
            reportLevel(AudioLevelSource::systemAudio, 0.62F);
            reportLevel(AudioLevelSource::microphone, 0.31F);
        }
        if (scene.microphoneCondition != SourceCondition::delivering) {
            reportLevel(AudioLevelSource::microphone, 0);
            recorder.recorder->onSourceCondition(AudioLevelSource::microphone,
                                                 scene.microphoneCondition);
            scheduler.runMain();
        }
        if (scene.systemAudioCondition != SourceCondition::delivering) {
            recorder.recorder->onSourceCondition(AudioLevelSource::systemAudio,
                                                 scene.systemAudioCondition);
            scheduler.runMain();
        }
    }

    void keepPicture(QWidget& widget, const std::string& name) const {
        EXPECT_TRUE(widget.grab().save(QString::fromStdString(folder + "/" + name + ".png")));
    }

    void lookAtEachScene(const Light& light, const std::string& size) {
        QApplication::setPalette(light.palette);
        for (const auto& scene : scenes) {
            for (const std::string spoken : {"en", "zh-Hans"}) {
                stage(scene, spoken);
                lookAs(scene.name + "-" + spoken, light.name + size);
            }
        }
    }

    void lookAs(const std::string& scene, const std::string& appearance) {
        const auto name = scene + "-" + appearance;
        keepPicture(*window, name);
        expectNothingClipped(*window, name);
        window->resize(10, 10);
        expectNothingClipped(*window, name + ", at its least size");
    }

    std::string folder =
        qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? "screenshots-2x" : "screenshots";

private:
    QFont usual_;
};

/// In light and dark palettes.
class ScenesTest : public LooksTest, public ::testing::WithParamInterface<std::size_t> {};

TEST_P(ScenesTest, haveRoomForEverything) {
    lookAtEachScene(lights().at(GetParam()), "");
}

INSTANTIATE_TEST_SUITE_P(Lights, ScenesTest, ::testing::Range<std::size_t>(0, 4));

TEST_F(LooksTest, hasRoomForLargeText) {
    enlargeText(1.5);
    lookAtEachScene(lights().front(), "-large");
}

TEST_F(LooksTest, showsTheEndOfTheColumnWhenItIsScrolled) {
    for (const auto* const size : {"", "-large"}) {
        enlargeText(*size == '\0' ? 1 : 1.5);
        stage(scenes.at(4), "en");
        window->resize(10, 10);
        settleEvents();
        auto* const bar = visible<QScrollArea>(*window).at(0)->verticalScrollBar();
        EXPECT_GT(bar->maximum(), 0);
        bar->setValue(bar->maximum());
        keepPicture(*window, std::string("completed-en-end") + size);
    }
}

TEST_F(LooksTest, needsNoScrollingInAnyScene) {
    for (const auto& scene : scenes) {
        for (const std::string spoken : {"en", "zh-Hans"}) {
            stage(scene, spoken);
            EXPECT_EQ(visible<QScrollArea>(*window).at(0)->verticalScrollBar()->maximum(), 0)
                << scene.name << " " << spoken;
        }
    }
}

TEST_F(LooksTest, showsItsAlerts) {
    for (const auto& light : lights()) {
        QApplication::setPalette(light.palette);
        for (const std::string spoken : {"en", "zh-Hans"}) {
            stage(scenes.front(), spoken);
            checkForUpdates();
            ASSERT_NE(alert(), nullptr);
            keepPicture(*alert(), "update-alert-" + spoken + "-" + light.name);
            updates->dismissMessage();
            fail(text(L10n::Key::screenPermissionDenied));
            ASSERT_NE(alert(), nullptr);
            keepPicture(*alert(), "error-alert-" + spoken + "-" + light.name);
            recorder.startError = nullptr;
        }
    }
}

TEST_F(LooksTest, elidesTheMiddleOfALongPath) {
    preferences.values[Preference::outputDirectory] =
        "/home/somebody/Documents/Work/2026/Meetings and interviews/Recordings/With sound";
    launchAndSettle();
    show();
    keepPicture(*window, "long-path-en-light");
    expectNothingClipped(*window, "long path");
}

} // namespace
} // namespace vantoro::testing
