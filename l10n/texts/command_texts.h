// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// What the program says on standard error apart from what a recording says.
struct CommandText {
    static constexpr BilingualText noMicrophone{"There is no microphone.", "没有麦克风。"};
    static constexpr BilingualText resultNotPrinted{"The result could not be printed.",
                                                    "无法输出结果。"};
    static constexpr BilingualText recordingNotPrinted{
        "The recording was saved as %1, which could not be printed.",
        "录音已保存为 %1，但无法输出该路径。"};
    static constexpr BilingualText recordingsNotPrinted{
        "The recovered recordings are in %1; their names could not be printed.",
        "恢复的录音在 %1 中，但无法输出文件名。"};
    static constexpr BilingualText marked{"Mark %1 at %2", "标记 %1：%2"};
    static constexpr BilingualText folderMissing{"There is no folder %1.", "文件夹 %1 不存在。"};
    static constexpr BilingualText desktopMissing{
        "There is no desktop to show a window on. See vantoro --help for what can be done without.",
        "没有可显示窗口的桌面。不需要窗口的用法请见 vantoro --help。"};
    static constexpr BilingualText firstProgramSilent{
        "Vantoro is running already, and does not answer.", "Vantoro 已在运行，但没有响应。"};
    static constexpr BilingualText notRunning{"Vantoro is not running.", "Vantoro 没有运行。"};
    static constexpr BilingualText notRecording{"Vantoro is not recording.",
                                                "Vantoro 没有在录音。"};
    static constexpr BilingualText noMoreMarks{"The recording holds no more marks.",
                                               "录音中不能再添加标记。"};
    static constexpr BilingualText programSilent{"Vantoro is running, but does not answer.",
                                                 "Vantoro 正在运行，但没有响应。"};
    static constexpr BilingualText otherProgramSilent{
        "Another Vantoro is running, but does not answer.",
        "另一个 Vantoro 正在运行，但没有响应。"};
    static constexpr BilingualText alreadyRecording{"Vantoro is already recording.",
                                                    "Vantoro 已经在录音。"};
    static constexpr BilingualText stillSaving{"Vantoro is still saving the last recording.",
                                               "Vantoro 仍在保存上一个录音。"};
    static constexpr BilingualText startedTooLate{
        "Vantoro did not start the recording in time. It may still start it.",
        "Vantoro 没有及时开始录音，稍后仍可能开始。"};
    static constexpr BilingualText programEnded{
        "Vantoro ended before it answered. If it was recording, its next start saves what is on "
        "disk, and so does vantoro recover.",
        "Vantoro 在响应之前退出。如果当时正在录音，下次启动或运行 vantoro recover "
        "时会保存已写入磁盘"
        "的内容。"};
    static constexpr BilingualText stopInterrupted{
        "The recording was stopped. It will be saved in %1.", "录音已停止，将保存在 %1。"};
    static constexpr BilingualText commandInterrupted{"Interrupted before Vantoro answered.",
                                                      "在 Vantoro 响应之前被中断。"};
    static constexpr BilingualText sessionBusMissing{
        "There is no session bus, through which a running Vantoro could be reached.",
        "没有会话总线，无法与正在运行的 Vantoro 通信。"};
    static constexpr BilingualText sessionBusHangs{
        "The session bus does not answer, so a running Vantoro cannot be reached.",
        "会话总线没有响应，无法与正在运行的 Vantoro 通信。"};
    static constexpr BilingualText sessionBusSilent{
        "The session bus does not answer. Vantoro goes on without the desktop's services.",
        "会话总线没有响应。Vantoro 将在没有桌面服务的情况下继续运行。"};
    static constexpr BilingualText systemBusSilent{
        "The system bus does not answer. The machine may go to sleep or shut down without waiting "
        "for a recording.",
        "系统总线没有响应。电脑可能不等录音保存就睡眠或关机。"};
    static constexpr BilingualText accessibilityBusSilent{
        "The accessibility bus does not answer. Screen readers cannot read the window.",
        "辅助功能总线没有响应。屏幕阅读器无法读取窗口。"};
};

} // namespace vantoro
