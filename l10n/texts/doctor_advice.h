// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// What the doctor's report advises, by the finding.
struct DoctorAdvice {
    static constexpr BilingualText soundServer{
        "Start the sound server: systemctl --user restart pipewire wireplumber, or log out and in.",
        "请启动声音服务器：systemctl --user restart pipewire wireplumber，或注销后重新登录。"};
    static constexpr BilingualText sessionManager{
        "Start the session manager, which links sound: systemctl --user restart wireplumber.",
        "请启动负责连接声音的会话管理器：systemctl --user restart wireplumber。"};
    static constexpr BilingualText systemAudio{
        "Permit Vantoro full access to PipeWire in the session manager's access rules.",
        "请在会话管理器的访问规则中允许 Vantoro 完整访问 PipeWire。"};
    static constexpr BilingualText systemAudioSandbox{
        "The sandbox hides what is played: give it access to PipeWire, or run Vantoro outside it.",
        "沙盒隐藏了正在播放的声音：请允许它访问 PipeWire，或在沙盒外运行 Vantoro。"};
    static constexpr BilingualText outputs{
        "Connect loudspeakers or headphones, or enable them in the sound settings.",
        "请连接扬声器或耳机，或在声音设置中启用。"};
    static constexpr BilingualText codedSound{
        "Coded sound cannot be recorded: switch passthrough off in the application that plays.",
        "编码音频无法录制：请在播放的应用中关闭直通。"};
    static constexpr BilingualText microphoneMuted{
        "Unmute the microphone %1 in the sound settings.", "请在声音设置中取消麦克风 %1 的静音。"};
    static constexpr BilingualText microphoneAtZero{
        "Raise the volume of the microphone %1 in the sound settings.",
        "请在声音设置中调高麦克风 %1 的音量。"};
    static constexpr BilingualText microphoneMissing{
        "Connect a microphone, or enable it in the sound settings; without one record with "
        "--no-microphone.",
        "请连接麦克风，或在声音设置中启用；没有麦克风时请用 --no-microphone 录音。"};
    static constexpr BilingualText defaultMicrophone{
        "Choose a microphone in the sound settings, or name one with --microphone.",
        "请在声音设置中选择麦克风，或用 --microphone 指定。"};
    static constexpr BilingualText permissionSettings{
        "Turn the microphone on in the desktop's privacy settings.",
        "请在桌面的隐私设置中打开麦克风。"};
    static constexpr BilingualText permissionRefused{
        "Allow Vantoro the microphone in the desktop's settings for applications.",
        "请在桌面的应用设置中允许 Vantoro 使用麦克风。"};
    static constexpr BilingualText sessionBusMissing{
        "Start Vantoro from a desktop, or within dbus-run-session.",
        "请在桌面环境中启动 Vantoro，或通过 dbus-run-session 启动。"};
    static constexpr BilingualText desktopSilent{
        "Log out and in again: a service of the desktop hangs.",
        "请注销后重新登录：桌面的某项服务没有响应。"};
    static constexpr BilingualText statusArea{
        "Enable the desktop's status area (GNOME: an extension for AppIndicators); until then a "
        "closed window is minimised, and no meters are shown there.",
        "请启用桌面的状态区（GNOME：AppIndicator "
        "扩展）；在此之前，关闭的窗口会最小化，状态区不显示电平。"};
    static constexpr BilingualText portal{
        "Install xdg-desktop-portal and the back end that belongs to your desktop.",
        "请安装 xdg-desktop-portal 以及与桌面对应的后端。"};
    static constexpr BilingualText sleepDelayRefused{
        "Permit your account to delay sleep (org.freedesktop.login1.inhibit-delay-sleep); until "
        "then stop recordings before the machine sleeps.",
        "请允许你的账户推迟睡眠（org.freedesktop.login1.inhibit-delay-"
        "sleep）；在此之前，请在电脑睡眠前停止录音。"};
    static constexpr BilingualText loginManager{
        "Without systemd-logind or elogind, stop recordings before the machine sleeps.",
        "没有 systemd-logind 或 elogind 时，请在电脑睡眠前停止录音。"};
    static constexpr BilingualText folderRefused{
        "Choose another recording folder, or allow yourself to write into %1.",
        "请选择其他录音文件夹，或允许自己写入 %1。"};
    static constexpr BilingualText folderSpace{
        "Make room on the disk of %1, or choose another recording folder.",
        "请清理 %1 所在的磁盘，或选择其他录音文件夹。"};
    static constexpr BilingualText folderSilent{
        "Reconnect the disk or the network share of %1, or choose another folder.",
        "请重新连接 %1 所在的磁盘或网络共享，或选择其他文件夹。"};
    static constexpr BilingualText interrupted{
        "Run vantoro recover, or open the window: either finishes interrupted recordings.",
        "请运行 vantoro recover 或打开窗口，以完成中断的录音。"};
};

} // namespace vantoro
