// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/desktop_texts.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(DesktopTextsTest, everyTextExistsInEitherLanguageWithItsArguments) {
    struct Row {
        BilingualText text;
        const char* english;
        const char* chinese;
    };

    for (const auto& [text, english, chinese] : {
             Row{DesktopText::showWindow, "Show Vantoro", "显示 Vantoro"},
             Row{DesktopText::recordingFor, "Recording: 1", "录音中：1"},
             Row{DesktopText::endedByItself, "The recording ended by itself", "录音已自行结束"},
             Row{DesktopText::recovered, "Recording recovered", "录音已恢复"},
             Row{DesktopText::play, "Play", "播放"},
             Row{DesktopText::showInFolder, "Show in Folder", "在文件夹中显示"},
             Row{DesktopText::sourceIs, "1: 2", "1：2"},
         }) {
        EXPECT_EQ(text.in(AppLanguage::english, {"1", "2"}), english);
        EXPECT_EQ(text.in(AppLanguage::chinese, {"1", "2"}), chinese);
    }
}

} // namespace
} // namespace vantoro::testing
