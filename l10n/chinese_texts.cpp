// SPDX-License-Identifier: GPL-3.0-or-later

#include <iterator>
#include <utility>

#include "l10n/l10n.h"

namespace vantoro {

namespace {

using enum L10n::Key;

constexpr std::pair<L10n::Key, std::string_view> chineseRows[] = {
    {language, "语言"},
    {checkForUpdates, "检查更新"},
    {currentVersion, "当前版本"},
    {alreadyLatest, "当前已是最新版本。"},
    {updateCheckFailed, "检查更新失败，请稍后重试。"},
    {downloadUpdate, "下载更新"},
    {audioInputLevels, "音频输入电平"},
    {refreshAudioDevices, "刷新音频设备和权限"},
    {ok, "好"},
    {close, "关闭"},
    {ready, "准备就绪"},
    {preparing, "准备中"},
    {recording, "录音中"},
    {saving, "保存中"},
    {saved, "已保存"},
    {needsAttention, "需要处理"},
    {m4aAudio, "M4A 音频"},
    {checkingPermissions, "正在检查权限和音频设备"},
    {capturingAudio, "正在录制系统声音和麦克风"},
    {mixingTracks, "正在混合音轨"},
    {recordingReady, "录音已准备好"},
    {audioSources, "音频来源"},
    {systemAudio, "系统声音"},
    {systemMeter, "系统"},
    {meetingAndAppSound, "会议和应用声音"},
    {microphone, "麦克风"},
    {microphoneMeter, "麦克风"},
    {yourVoice, "你的声音"},
    {input, "输入"},
    {screenAndSystemAudio, "屏幕与系统声音"},
    {allowed, "已允许"},
    {required, "需要授权"},
    {settings, "设置"},
    {recordingPanel, "录音"},
    {systemLevel, "系统声音音量"},
    {micLevel, "麦克风音量"},
    {change, "更改"},
    {openRecordingFolder, "打开录音文件夹"},
    {recordingSaved, "录音已保存"},
    {playRecording, "播放录音"},
    {showInFinder, "在访达中显示"},
    {stopRecording, "停止录音"},
    {startRecording, "开始录音"},
    {chooseRecordingFolder, "选择录音文件夹"},
    {choose, "选择"},
    {sleepSaved, "电脑进入睡眠，录音已中断；已成功保存已录制的音频。"},
    {captureInterruptedSaved, "音频采集被中断，已成功保存已录制的音频。"},
    {diskNearlyFullSaved, "磁盘空间即将用尽，录音已结束；已保存已录制的音频。"},
    {noAudioSource, "请先开启系统声音或麦克风。"},
    {screenPermissionDenied,
     "需要屏幕与系统声音录制权限。请在系统设置中允许 Vantoro，然后重新打开应用。"},
    {microphonePermissionDenied, "需要麦克风权限。请在系统设置中允许 Vantoro 后重试。"},
    {microphonePermissionOnStart, "点击开始录音时申请麦克风权限。"},
    {noDisplayAvailable, "Vantoro 找不到可用的显示器。"},
    {writerSetupFailed, "Vantoro 无法准备录音文件。"},
    {noAudioCaptured, "没有采集到音频，请检查已选择的音频来源。"},
    {exportFailed, "Vantoro 无法创建最终 M4A 文件。"},
    {diskTooFull, "磁盘空间不足，无法录音。请释放一些空间，或更改录音文件夹。"},
};

} // namespace

const L10n::Table& L10n::chinese() {
    static const Table table(std::begin(chineseRows), std::end(chineseRows));
    return table;
}

} // namespace vantoro
