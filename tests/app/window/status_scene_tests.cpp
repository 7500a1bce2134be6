// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/status_scene.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using Case = RecordingState::Case;

TEST(StatusSceneTest, menuOffersWhatTheStateAllows) {
    struct Row {
        Case state;
        bool canStart;
        StatusAreaCommand command;
        bool isEnabled;
    };

    const auto preferences = preferencesIn("en");
    const L10n texts(preferences);
    for (const auto& row : {
             Row{Case::idle, true, StatusAreaCommand::startRecording, true},
             Row{Case::idle, false, StatusAreaCommand::startRecording, false},
             Row{Case::preparing, false, StatusAreaCommand::stopRecording, true},
             Row{Case::recording, false, StatusAreaCommand::stopRecording, true},
             Row{Case::processing, false, StatusAreaCommand::startRecording, false},
             Row{Case::completed, true, StatusAreaCommand::startRecording, true},
             Row{Case::failed, true, StatusAreaCommand::startRecording, true},
         }) {
        const auto menu = statusMenu({.state = row.state, .canStart = row.canStart}, texts);
        ASSERT_EQ(menu.size(), 3U);
        EXPECT_EQ(menu[0], (StatusMenuRow{.command = StatusAreaCommand::showWindow,
                                          .label = "Show Vantoro"}));
        EXPECT_EQ(menu[1].command, row.command) << static_cast<int>(row.state);
        EXPECT_EQ(menu[1].isEnabled, row.isEnabled) << static_cast<int>(row.state);
        EXPECT_EQ(menu[2],
                  (StatusMenuRow{
                      .command = StatusAreaCommand::quit, .label = "Quit", .startsGroup = true}));
    }
}

TEST(StatusSceneTest, menuSpeaksTheUsersLanguage) {
    const auto preferences = preferencesIn("zh-Hans");
    const auto menu = statusMenu({.state = Case::recording}, L10n(preferences));
    EXPECT_EQ(menu[0].label + menu[1].label + menu[2].label, "显示 Vantoro停止录音退出");
}

TEST(StatusSceneTest, detailIsTheRecordedTimeAndOnlyOfARunningRecording) {
    const auto english = preferencesIn("en");
    const auto chinese = preferencesIn("zh-Hans");
    for (const auto state : {Case::idle, Case::preparing, Case::processing, Case::completed}) {
        EXPECT_EQ(toolTipDetail({.state = state, .elapsedSeconds = 5}, L10n(english)), "");
    }
    const StatusScene scene{.state = Case::recording, .elapsedSeconds = 75};
    EXPECT_EQ(toolTipDetail(scene, L10n(english)), "Recording: 01:15");
    EXPECT_EQ(toolTipDetail(scene, L10n(chinese)), "录音中：01:15");
}

} // namespace
} // namespace vantoro::testing
