// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "l10n/texts/bilingual_text.h"

namespace vantoro {

/// The lines of the doctor's report, apart from its advice.
struct DoctorFinding {
    static constexpr BilingualText nothingIsWrong{"Nothing is wrong.", "一切正常。"};
    static constexpr BilingualText whatToDo{"What to do:", "处理办法："};

    static constexpr BilingualText soundServer{"Sound server: PipeWire %1 (client library %2)",
                                               "声音服务器：PipeWire %1（客户端库 %2）"};
    static constexpr BilingualText soundServerUnreachable{
        "Sound server: PipeWire does not answer (client library %1)",
        "声音服务器：PipeWire 没有响应（客户端库 %1）"};
    static constexpr BilingualText sessionManager{"Session manager: running",
                                                  "会话管理器：正在运行"};
    static constexpr BilingualText sessionManagerMissing{"Session manager: not running",
                                                         "会话管理器：没有运行"};
    static constexpr BilingualText systemAudioAllowed{
        "Permission for system audio: granted by the sound server",
        "系统声音权限：声音服务器已允许"};
    static constexpr BilingualText systemAudioRefused{
        "Permission for system audio: refused by the sound server",
        "系统声音权限：被声音服务器拒绝"};
    static constexpr BilingualText outputs{"Outputs: %1", "输出设备：%1 个"};
    static constexpr BilingualText outputsMissing{"Outputs: none", "输出设备：没有"};
    static constexpr BilingualText codedSound{
        "System audio: an application sends coded sound straight to the receiver",
        "系统声音：有应用将编码音频直通到功放"};

    static constexpr BilingualText microphone{"Microphone: %1", "麦克风：%1"};
    static constexpr BilingualText microphoneDefault{"%1 (default)", "%1（默认）"};
    static constexpr BilingualText microphoneMuted{"Microphone: %1: muted in the mixer",
                                                   "麦克风：%1：在混音器中已静音"};
    static constexpr BilingualText microphoneAtZero{
        "Microphone: %1: its volume in the mixer is zero", "麦克风：%1：在混音器中的音量为零"};
    static constexpr BilingualText microphoneMissing{"Microphone: none", "麦克风：没有"};
    static constexpr BilingualText defaultMicrophoneMissing{"Default microphone: none",
                                                            "默认麦克风：没有"};

    static constexpr BilingualText permissionNotForbidden{
        "Permission for the microphone: no setting of the desktop forbids it",
        "麦克风权限：桌面设置没有禁止"};
    static constexpr BilingualText permissionGranted{
        "Permission for the microphone: granted in the sandbox's permission store",
        "麦克风权限：沙盒的权限记录中已允许"};
    static constexpr BilingualText permissionUndecided{
        "Permission for the microphone: not decided yet; the sandbox asks at the first recording",
        "麦克风权限：尚未决定，首次录音时沙盒会询问"};
    static constexpr BilingualText permissionDisabledBySettings{
        "Permission for the microphone: turned off in the desktop's privacy settings",
        "麦克风权限：在桌面的隐私设置中已关闭"};
    static constexpr BilingualText permissionDisabledByLockdown{
        "Permission for the microphone: turned off by the desktop portal's lockdown",
        "麦克风权限：被桌面门户的锁定策略关闭"};
    static constexpr BilingualText permissionRefused{
        "Permission for the microphone: refused in the sandbox's permission store",
        "麦克风权限：沙盒的权限记录中已拒绝"};
    static constexpr BilingualText permissionUnknown{
        "Permission for the microphone: the desktop does not answer", "麦克风权限：桌面没有响应"};

    static constexpr BilingualText sessionBusMissing{
        "Session bus: there is none, so no status area and no portal",
        "会话总线：没有，因此也没有状态区和桌面门户"};
    static constexpr BilingualText sessionBusSilent{"Session bus: does not answer",
                                                    "会话总线：没有响应"};
    static constexpr BilingualText statusArea{"Status area: there", "状态区：可用"};
    static constexpr BilingualText statusAreaMissing{"Status area: the desktop shows none",
                                                     "状态区：桌面没有显示"};
    static constexpr BilingualText statusAreaUnknown{"Status area: the desktop does not answer",
                                                     "状态区：桌面没有响应"};
    static constexpr BilingualText portal{"Desktop portal: keeps the machine awake while recording",
                                          "桌面门户：录音时可阻止自动睡眠"};
    static constexpr BilingualText portalMissing{
        "Desktop portal: not there, or without a way to keep the machine awake",
        "桌面门户：没有，或无法阻止自动睡眠"};
    static constexpr BilingualText portalUnknown{"Desktop portal: does not answer",
                                                 "桌面门户：没有响应"};
    static constexpr BilingualText sleepDelay{
        "Login manager: lets Vantoro put off sleep until a recording is safe",
        "登录管理器：允许 Vantoro 推迟睡眠，直到录音安全保存"};
    static constexpr BilingualText sleepDelayRefused{
        "Login manager: does not let Vantoro put off sleep", "登录管理器：不允许 Vantoro 推迟睡眠"};
    static constexpr BilingualText loginManagerMissing{"Login manager: not there",
                                                       "登录管理器：没有"};
    static constexpr BilingualText loginManagerUnknown{"Login manager: does not answer",
                                                       "登录管理器：没有响应"};

    static constexpr BilingualText folder{"Recording folder: %1", "录音文件夹：%1"};
    static constexpr BilingualText folderToBeMade{"%1 (created by the first recording)",
                                                  "%1（首次录音时创建）"};
    static constexpr BilingualText folderSpace{"Recording folder: %1, %2 free",
                                               "录音文件夹：%1，可用空间 %2"};
    static constexpr BilingualText folderRefused{
        "Recording folder: %1: no file can be created (%2)", "录音文件夹：%1：无法创建文件（%2）"};
    static constexpr BilingualText folderSpaceShort{"Recording folder: %1, only %2 free",
                                                    "录音文件夹：%1，可用空间只有 %2"};
    static constexpr BilingualText folderSilent{"Recording folder: %1: its disk does not answer",
                                                "录音文件夹：%1：所在的磁盘没有响应"};
    static constexpr BilingualText interruptedNone{"Interrupted recordings: none",
                                                   "中断的录音：没有"};
    static constexpr BilingualText interruptedWaiting{
        "Interrupted recordings waiting to be finished: %1", "等待完成的中断录音：%1 段"};
    static constexpr BilingualText interruptedUnknown{
        "Interrupted recordings: their files could not be read in time",
        "中断的录音：未能及时读取文件"};

    static constexpr BilingualText earlierFault{"On %1: %2", "%1：%2"};
};

} // namespace vantoro
