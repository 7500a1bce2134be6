// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/app_delegate.h"

#include <optional>

#include <QtGui/QIcon>
#include <QtWidgets/QApplication>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"
#include "tests/support/fake_status_area.h"
#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

class AppDelegateTest : public ::testing::Test {
protected:
    MemoryPreferences preferences = preferencesIn("en");
    AudioLevelStore levels;
    FakeStatusArea area;
    std::vector<std::string> clicks;
    std::vector<std::pair<StatusAreaCommand, std::string>> choices;
    QPalette usual = QApplication::palette();
    std::optional<AppDelegate> delegate{
        std::in_place,
        AppDelegate::Surroundings{
            .statusArea = area,
            .levels = levels,
            .preferences = preferences,
            .desktops = "KDE",
            .showMainWindow = [this](const std::string& token) { clicks.push_back(token); },
            .carryOut =
                [this](StatusAreaCommand command, const std::string& token) {
                    choices.emplace_back(command, token);
                }}};

    void TearDown() override { QApplication::setPalette(usual); }

    void launch() {
        AppDelegate::applicationWillFinishLaunching();
        delegate->applicationDidFinishLaunching();
    }

    FakeStatusArea::Item& systemAudio() { return *area.items.at(0); }

    FakeStatusArea::Item& microphone() { return *area.items.at(1); }

    static StatusImage picture(LevelSymbol symbol, double level, bool isRecording = false) {
        return LevelPictures(panelColor(QApplication::palette(), "KDE"))
            .picture(symbol, level, isRecording);
    }

    /// Whether the microphone's meter eventually shows a level.
    bool eventuallyShows(double level) {
        return EventLoop::runUntil(
            [&] { return microphone().image == picture(LevelSymbol::microphone, level); });
    }
};

TEST_F(AppDelegateTest, metersAreThereOnlyOnceTheLaunchIsOver) {
    AppDelegate::applicationWillFinishLaunching();
    EXPECT_TRUE(area.items.empty());
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(area.items.size(), 2U);
}

TEST_F(AppDelegateTest, programHasItsIcon) {
    QApplication::setWindowIcon({});
    AppDelegate::applicationWillFinishLaunching();
    EXPECT_FALSE(QApplication::windowIcon().isNull());
}

TEST_F(AppDelegateTest, eachMeterHasItsNameAndToolTip) {
    launch();
    EXPECT_EQ(systemAudio().traits.identifier, "com.vantoro.app.system-audio-level");
    EXPECT_EQ(systemAudio().traits.toolTip, "System Audio");
    EXPECT_EQ(microphone().traits.identifier, "com.vantoro.app.microphone-level");
    EXPECT_EQ(microphone().traits.toolTip, "Microphone");
}

TEST_F(AppDelegateTest, silentSourcesShowTheFirstStageOfTheirSymbols) {
    launch();
    EXPECT_EQ(systemAudio().image, picture(LevelSymbol::loudspeaker, 0.05));
    EXPECT_EQ(systemAudio().description, "System Audio");
    EXPECT_EQ(microphone().image, picture(LevelSymbol::microphone, 0.05));
    EXPECT_EQ(microphone().description, "Microphone");
}

TEST_F(AppDelegateTest, levelsThatAreThereBeforeTheLaunchAreShown) {
    levels.setLevel(AudioLevelSource::microphone, 1);
    launch();
    EXPECT_EQ(microphone().image, picture(LevelSymbol::microphone, 1));
}

TEST_F(AppDelegateTest, levelsAreShownByTheEventLoop) {
    launch();
    levels.setLevel(AudioLevelSource::microphone, 0.8);
    EXPECT_EQ(microphone().image, picture(LevelSymbol::microphone, 0));
    EXPECT_TRUE(eventuallyShows(0.8));
    EXPECT_EQ(systemAudio().image, picture(LevelSymbol::loudspeaker, 0));
    levels.setLevel(AudioLevelSource::systemAudio, 1);
    EXPECT_TRUE(EventLoop::runUntil(
        [&] { return systemAudio().image == picture(LevelSymbol::loudspeaker, 1); }));
}

TEST_F(AppDelegateTest, clickAsksForTheWindow) {
    launch();
    systemAudio().traits.clicked("a token");
    microphone().traits.clicked("");
    EXPECT_EQ(clicks, std::vector<std::string>({"a token", ""}));
}

TEST_F(AppDelegateTest, descriptionSaysThatASourceDeliversNothing) {
    launch();
    levels.setCondition(AudioLevelSource::microphone, SourceCondition::muted);
    EXPECT_TRUE(EventLoop::runUntil([&] {
        return microphone().description == "Microphone: Muted in the desktop's sound settings";
    }));
    EXPECT_EQ(systemAudio().description, "System Audio");
    levels.setCondition(AudioLevelSource::microphone, SourceCondition::delivering);
    EXPECT_TRUE(EventLoop::runUntil([&] { return microphone().description == "Microphone"; }));
}

TEST_F(AppDelegateTest, recordingCanBeToldFromRestWhenBothAreSilent) {
    launch();
    delegate->setScene({.state = RecordingState::Case::recording});
    EXPECT_EQ(systemAudio().image, picture(LevelSymbol::loudspeaker, 0, true));
    EXPECT_EQ(microphone().image, picture(LevelSymbol::microphone, 0, true));
    delegate->setScene({.state = RecordingState::Case::processing});
    EXPECT_EQ(microphone().image, picture(LevelSymbol::microphone, 0));
}

TEST_F(AppDelegateTest, recordingThatBeganBeforeTheMetersIsShown) {
    delegate->setScene({.state = RecordingState::Case::recording, .elapsedSeconds = 61});
    launch();
    EXPECT_EQ(microphone().image, picture(LevelSymbol::microphone, 0, true));
    EXPECT_EQ(microphone().toolTipDetail, "Recording: 01:01");
    EXPECT_EQ(systemAudio().menu.at(1).label, "Stop Recording");
}

TEST_F(AppDelegateTest, toolTipsSayTheRecordedTimeOnlyWhileRecording) {
    launch();
    EXPECT_EQ(systemAudio().toolTipDetail, "");
    delegate->setScene({.state = RecordingState::Case::recording, .elapsedSeconds = 3600});
    EXPECT_EQ(systemAudio().toolTipDetail, "Recording: 01:00:00");
    EXPECT_EQ(microphone().toolTipDetail, "Recording: 01:00:00");
    delegate->setScene({.state = RecordingState::Case::processing, .elapsedSeconds = 3600});
    EXPECT_EQ(microphone().toolTipDetail, "");
}

TEST_F(AppDelegateTest, choiceInAMenuIsPassedOn) {
    launch();
    systemAudio().traits.chosen(StatusAreaCommand::startRecording, "a token");
    microphone().traits.chosen(StatusAreaCommand::quit, "");
    EXPECT_EQ(choices,
              (std::vector<std::pair<StatusAreaCommand, std::string>>{
                  {StatusAreaCommand::startRecording, "a token"}, {StatusAreaCommand::quit, ""}}));
}

TEST_F(AppDelegateTest, anotherLanguageAppearsInDescriptionsAtTheNextLevelButNotInToolTips) {
    launch();
    preferences = preferencesIn("zh-Hans");
    EXPECT_EQ(microphone().description, "Microphone");
    levels.setLevel(AudioLevelSource::microphone, 0.8);
    EXPECT_TRUE(eventuallyShows(0.8));
    EXPECT_EQ(microphone().description, "麦克风");
    EXPECT_EQ(microphone().traits.toolTip, "Microphone");
}

TEST_F(AppDelegateTest, metersTurnLightWithTheDesktopDark) {
    launch();
    const auto before = microphone().image;
    QApplication::setPalette(QPalette(QColor(30, 30, 30)));
    EXPECT_TRUE(eventuallyShows(0));
    EXPECT_NE(microphone().image, before);
}

TEST_F(AppDelegateTest, metersEndWithIt) {
    launch();
    levels.setLevel(AudioLevelSource::microphone, 0.8);
    delegate.reset();
    EXPECT_TRUE(area.items.empty());
    QCoreApplication::processEvents();
}

} // namespace
} // namespace vantoro::testing
