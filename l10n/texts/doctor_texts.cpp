// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/doctor_texts.h"

#include <algorithm>
#include <iterator>

#include "l10n/filled.h"

namespace vantoro {

namespace {

using Text = DoctorText;

struct Row {
    DoctorText text;
    std::string_view english;
    std::string_view chinese;
};

constexpr Row rows[] = {
    {Text::nothingIsWrong, "Nothing is wrong.", "一切正常。"},
    {Text::whatToDo, "What to do:", "处理办法："},

    {Text::soundServer, "Sound server: PipeWire %1 (client library %2)",
     "声音服务器：PipeWire %1（客户端库 %2）"},
    {Text::soundServerUnreachable, "Sound server: PipeWire does not answer (client library %1)",
     "声音服务器：PipeWire 没有响应（客户端库 %1）"},
    {Text::soundServerAdvice,
     "Start the sound server: systemctl --user restart pipewire wireplumber, or log out and in.",
     "请启动声音服务器：systemctl --user restart pipewire wireplumber，或注销后重新登录。"},
    {Text::sessionManager, "Session manager: running", "会话管理器：正在运行"},
    {Text::sessionManagerMissing, "Session manager: not running", "会话管理器：没有运行"},
    {Text::sessionManagerAdvice,
     "Start the session manager, which links sound: systemctl --user restart wireplumber.",
     "请启动负责连接声音的会话管理器：systemctl --user restart wireplumber。"},
    {Text::systemAudioAllowed, "Permission for system audio: granted by the sound server",
     "系统声音权限：声音服务器已允许"},
    {Text::systemAudioRefused, "Permission for system audio: refused by the sound server",
     "系统声音权限：被声音服务器拒绝"},
    {Text::systemAudioAdvice,
     "Permit Vantoro full access to PipeWire in the session manager's access rules.",
     "请在会话管理器的访问规则中允许 Vantoro 完整访问 PipeWire。"},
    {Text::systemAudioSandboxAdvice,
     "The sandbox hides what is played: give it access to PipeWire, or run Vantoro outside it.",
     "沙盒隐藏了正在播放的声音：请允许它访问 PipeWire，或在沙盒外运行 Vantoro。"},
    {Text::outputs, "Outputs: %1", "输出设备：%1 个"},
    {Text::outputsMissing, "Outputs: none", "输出设备：没有"},
    {Text::outputsAdvice,
     "Connect loudspeakers or headphones, or enable them in the sound settings.",
     "请连接扬声器或耳机，或在声音设置中启用。"},
    {Text::codedSound, "System audio: an application sends coded sound straight to the receiver",
     "系统声音：有应用将编码音频直通到功放"},
    {Text::codedSoundAdvice,
     "Coded sound cannot be recorded: switch passthrough off in the application that plays.",
     "编码音频无法录制：请在播放的应用中关闭直通。"},

    {Text::microphone, "Microphone: %1", "麦克风：%1"},
    {Text::microphoneDefault, "%1 (default)", "%1（默认）"},
    {Text::microphoneMuted, "Microphone: %1: muted in the mixer", "麦克风：%1：在混音器中已静音"},
    {Text::microphoneMutedAdvice, "Unmute the microphone %1 in the sound settings.",
     "请在声音设置中取消麦克风 %1 的静音。"},
    {Text::microphoneAtZero, "Microphone: %1: its volume in the mixer is zero",
     "麦克风：%1：在混音器中的音量为零"},
    {Text::microphoneAtZeroAdvice, "Raise the volume of the microphone %1 in the sound settings.",
     "请在声音设置中调高麦克风 %1 的音量。"},
    {Text::microphoneMissing, "Microphone: none", "麦克风：没有"},
    {Text::microphoneMissingAdvice,
     "Connect a microphone, or enable it in the sound settings; without one record with "
     "--no-microphone.",
     "请连接麦克风，或在声音设置中启用；没有麦克风时请用 --no-microphone 录音。"},
    {Text::defaultMicrophoneMissing, "Default microphone: none", "默认麦克风：没有"},
    {Text::defaultMicrophoneAdvice,
     "Choose a microphone in the sound settings, or name one with --microphone.",
     "请在声音设置中选择麦克风，或用 --microphone 指定。"},

    {Text::permissionNotForbidden,
     "Permission for the microphone: no setting of the desktop forbids it",
     "麦克风权限：桌面设置没有禁止"},
    {Text::permissionGranted,
     "Permission for the microphone: granted in the sandbox's permission store",
     "麦克风权限：沙盒的权限记录中已允许"},
    {Text::permissionUndecided,
     "Permission for the microphone: not decided yet; the sandbox asks at the first recording",
     "麦克风权限：尚未决定，首次录音时沙盒会询问"},
    {Text::permissionDisabledBySettings,
     "Permission for the microphone: turned off in the desktop's privacy settings",
     "麦克风权限：在桌面的隐私设置中已关闭"},
    {Text::permissionDisabledByLockdown,
     "Permission for the microphone: turned off by the desktop portal's lockdown",
     "麦克风权限：被桌面门户的锁定策略关闭"},
    {Text::permissionSettingsAdvice, "Turn the microphone on in the desktop's privacy settings.",
     "请在桌面的隐私设置中打开麦克风。"},
    {Text::permissionRefused,
     "Permission for the microphone: refused in the sandbox's permission store",
     "麦克风权限：沙盒的权限记录中已拒绝"},
    {Text::permissionRefusedAdvice,
     "Allow Vantoro the microphone in the desktop's settings for applications.",
     "请在桌面的应用设置中允许 Vantoro 使用麦克风。"},
    {Text::permissionUnknown, "Permission for the microphone: the desktop does not answer",
     "麦克风权限：桌面没有响应"},

    {Text::sessionBusMissing, "Session bus: there is none, so no status area and no portal",
     "会话总线：没有，因此也没有状态区和桌面门户"},
    {Text::sessionBusMissingAdvice, "Start Vantoro from a desktop, or within dbus-run-session.",
     "请在桌面环境中启动 Vantoro，或通过 dbus-run-session 启动。"},
    {Text::sessionBusSilent, "Session bus: does not answer", "会话总线：没有响应"},
    {Text::desktopSilentAdvice, "Log out and in again: a service of the desktop hangs.",
     "请注销后重新登录：桌面的某项服务没有响应。"},
    {Text::statusArea, "Status area: there", "状态区：可用"},
    {Text::statusAreaMissing, "Status area: the desktop shows none", "状态区：桌面没有显示"},
    {Text::statusAreaAdvice,
     "Enable the desktop's status area (GNOME: an extension for AppIndicators); until then a "
     "closed "
     "window is minimised, and no meters are shown there.",
     "请启用桌面的状态区（GNOME：AppIndicator 扩展）；在此之前，关闭的窗口会最小化，状态区不显示电"
     "平。"},
    {Text::statusAreaUnknown, "Status area: the desktop does not answer", "状态区：桌面没有响应"},
    {Text::portal, "Desktop portal: keeps the machine awake while recording",
     "桌面门户：录音时可阻止自动睡眠"},
    {Text::portalMissing, "Desktop portal: not there, or without a way to keep the machine awake",
     "桌面门户：没有，或无法阻止自动睡眠"},
    {Text::portalAdvice,
     "Install xdg-desktop-portal and the back end that belongs to your desktop.",
     "请安装 xdg-desktop-portal 以及与桌面对应的后端。"},
    {Text::portalUnknown, "Desktop portal: does not answer", "桌面门户：没有响应"},
    {Text::sleepDelay, "Login manager: lets Vantoro put off sleep until a recording is safe",
     "登录管理器：允许 Vantoro 推迟睡眠，直到录音安全保存"},
    {Text::sleepDelayRefused, "Login manager: does not let Vantoro put off sleep",
     "登录管理器：不允许 Vantoro 推迟睡眠"},
    {Text::sleepDelayRefusedAdvice,
     "Permit your account to delay sleep (org.freedesktop.login1.inhibit-delay-sleep); until then "
     "stop recordings before the machine sleeps.",
     "请允许你的账户推迟睡眠（org.freedesktop.login1.inhibit-delay-"
     "sleep）；在此之前，请在电脑睡眠前"
     "停止录音。"},
    {Text::loginManagerMissing, "Login manager: not there", "登录管理器：没有"},
    {Text::loginManagerAdvice,
     "Without systemd-logind or elogind, stop recordings before the machine sleeps.",
     "没有 systemd-logind 或 elogind 时，请在电脑睡眠前停止录音。"},
    {Text::loginManagerUnknown, "Login manager: does not answer", "登录管理器：没有响应"},

    {Text::folder, "Recording folder: %1", "录音文件夹：%1"},
    {Text::folderToBeMade, "%1 (created by the first recording)", "%1（首次录音时创建）"},
    {Text::folderSpace, "Recording folder: %1, %2 free", "录音文件夹：%1，可用空间 %2"},
    {Text::folderRefused, "Recording folder: %1: no file can be created (%2)",
     "录音文件夹：%1：无法创建文件（%2）"},
    {Text::folderRefusedAdvice,
     "Choose another recording folder, or allow yourself to write into %1.",
     "请选择其他录音文件夹，或允许自己写入 %1。"},
    {Text::folderSpaceShort, "Recording folder: %1, only %2 free",
     "录音文件夹：%1，可用空间只有 %2"},
    {Text::folderSpaceAdvice, "Make room on the disk of %1, or choose another recording folder.",
     "请清理 %1 所在的磁盘，或选择其他录音文件夹。"},
    {Text::folderSilent, "Recording folder: %1: its disk does not answer",
     "录音文件夹：%1：所在的磁盘没有响应"},
    {Text::folderSilentAdvice,
     "Reconnect the disk or the network share of %1, or choose another folder.",
     "请重新连接 %1 所在的磁盘或网络共享，或选择其他文件夹。"},
    {Text::interruptedNone, "Interrupted recordings: none", "中断的录音：没有"},
    {Text::interruptedWaiting, "Interrupted recordings waiting to be finished: %1",
     "等待完成的中断录音：%1 段"},
    {Text::interruptedAdvice,
     "Run vantoro recover, or open the window: either finishes interrupted recordings.",
     "请运行 vantoro recover 或打开窗口，以完成中断的录音。"},
    {Text::interruptedUnknown, "Interrupted recordings: their files could not be read in time",
     "中断的录音：未能及时读取文件"},
};

} // namespace

std::string doctorText(DoctorText text, AppLanguage language,
                       const std::vector<std::string>& arguments) {
    const auto* const row = std::ranges::find(rows, text, &Row::text);
    if (row == std::end(rows)) {
        return {};
    }
    return filled(language == AppLanguage::english ? row->english : row->chinese, arguments);
}

} // namespace vantoro
