// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/command_texts.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(CommandTextsTest, everyTextExistsInEitherLanguageWithItsArguments) {
    struct Row {
        BilingualText text;
        const char* english;
        const char* chinese;
    };

    for (const auto& [text, english, chinese] : {
             Row{CommandText::noMicrophone, "There is no microphone.", "没有麦克风。"},
             Row{CommandText::resultNotPrinted, "The result could not be printed.",
                 "无法输出结果。"},
             Row{CommandText::recordingNotPrinted,
                 "The recording was saved as /r%1, which could not be printed.",
                 "录音已保存为 /r%1，但无法输出该路径。"},
             Row{CommandText::recordingsNotPrinted,
                 "The recovered recordings are in /r%1; their names could not be printed.",
                 "恢复的录音在 /r%1 中，但无法输出文件名。"},
             Row{CommandText::folderMissing, "There is no folder /r%1.", "文件夹 /r%1 不存在。"},
             Row{CommandText::desktopMissing,
                 "There is no desktop to show a window on. See vantoro --help for what can be "
                 "done without.",
                 "没有可显示窗口的桌面。不需要窗口的用法请见 vantoro --help。"},
             Row{CommandText::firstProgramSilent,
                 "Vantoro is running already, and does not answer.",
                 "Vantoro 已在运行，但没有响应。"},
             Row{CommandText::sessionBusSilent,
                 "The session bus does not answer. Vantoro goes on without the desktop's services.",
                 "会话总线没有响应。Vantoro 将在没有桌面服务的情况下继续运行。"},
             Row{CommandText::systemBusSilent,
                 "The system bus does not answer. The machine may go to sleep or shut down without "
                 "waiting for a recording.",
                 "系统总线没有响应。电脑可能不等录音保存就睡眠或关机。"},
             Row{CommandText::accessibilityBusSilent,
                 "The accessibility bus does not answer. Screen readers cannot read the window.",
                 "辅助功能总线没有响应。屏幕阅读器无法读取窗口。"},
         }) {
        EXPECT_EQ(text.in(AppLanguage::english, {"/r%1"}), english);
        EXPECT_EQ(text.in(AppLanguage::chinese, {"/r%1"}), chinese);
    }
}

} // namespace
} // namespace vantoro::testing
