// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/command_texts.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "l10n/filled.h"

namespace vantoro {

namespace {

struct CommandRow {
    std::string_view english;
    std::string_view chinese;
};

/// In the order of the texts.
constexpr std::array<CommandRow, 10> commandRows{{
    {"There is no microphone.", "没有麦克风。"},
    {"The result could not be printed.", "无法输出结果。"},
    {"The recording was saved as %1, which could not be printed.",
     "录音已保存为 %1，但无法输出该路径。"},
    {"The recovered recordings are in %1; their names could not be printed.",
     "恢复的录音在 %1 中，但无法输出文件名。"},
    {"There is no folder %1.", "文件夹 %1 不存在。"},
    {"There is no desktop to show a window on. See vantoro --help for what can be done without.",
     "没有可显示窗口的桌面。不需要窗口的用法请见 vantoro --help。"},
    {"Vantoro is running already, and does not answer.", "Vantoro 已在运行，但没有响应。"},
    {"The session bus does not answer. Vantoro goes on without the desktop's services.",
     "会话总线没有响应。Vantoro 将在没有桌面服务的情况下继续运行。"},
    {"The system bus does not answer. The machine may go to sleep or shut down without waiting for "
     "a recording.",
     "系统总线没有响应。电脑可能不等录音保存就睡眠或关机。"},
    {"The accessibility bus does not answer. Screen readers cannot read the window.",
     "辅助功能总线没有响应。屏幕阅读器无法读取窗口。"},
}};
static_assert(commandRows.size() ==
              static_cast<std::size_t>(CommandText::accessibilityBusSilent) + 1);

} // namespace

std::string commandText(CommandText text, AppLanguage language,
                        const std::vector<std::string>& arguments) {
    const auto& row = commandRows.at(static_cast<std::size_t>(text));
    return filled(language == AppLanguage::english ? row.english : row.chinese, arguments);
}

} // namespace vantoro
