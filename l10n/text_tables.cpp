// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/l10n.h"

namespace vantoro {

namespace {

using enum TextKey;

struct KeyRow {
    TextKey key;
    std::string_view english;
    std::string_view chinese;
};

constexpr KeyRow keyRows[] = {
    {language, "Language", "语言"},
    {checkForUpdates, "Check for Updates", "检查更新"},
    {currentVersion, "Version", "当前版本"},
    {alreadyLatest, "You are up to date.", "当前已是最新版本。"},
    {updateCheckFailed, "Could not check for updates. Try again later.",
     "检查更新失败，请稍后重试。"},
    {downloadUpdate, "Download Update", "下载更新"},
    {audioInputLevels, "Audio input levels", "音频输入电平"},
    {refreshAudioDevices, "Refresh audio devices and permissions", "刷新音频设备和权限"},
    {ok, "OK", "好"},
    {close, "Close", "关闭"},
    {ready, "Ready", "准备就绪"},
    {preparing, "Preparing", "准备中"},
    {recording, "Recording", "录音中"},
    {saving, "Saving", "保存中"},
    {saved, "Saved", "已保存"},
    {needsAttention, "Needs attention", "需要处理"},
    {m4aAudio, "M4A audio", "M4A 音频"},
    {checkingPermissions, "Checking permissions and audio devices", "正在检查权限和音频设备"},
    {capturingAudio, "System audio and microphone are being captured", "正在录制系统声音和麦克风"},
    {mixingTracks, "Mixing audio tracks", "正在混合音轨"},
    {recordingReady, "Your recording is ready", "录音已准备好"},
    {audioSources, "Audio Sources", "音频来源"},
    {systemAudio, "System Audio", "系统声音"},
    {systemMeter, "System", "系统"},
    {meetingAndAppSound, "Meeting and app sound", "会议和应用声音"},
    {microphone, "Microphone", "麦克风"},
    {microphoneMeter, "Mic", "麦克风"},
    {yourVoice, "Your voice", "你的声音"},
    {input, "Input", "输入"},
    {screenAndSystemAudio, "Screen & System Audio", "屏幕与系统声音"},
    {allowed, "Allowed", "已允许"},
    {required, "Required", "需要授权"},
    {settings, "Settings", "设置"},
    {recordingPanel, "Recording", "录音"},
    {systemLevel, "System level", "系统声音音量"},
    {micLevel, "Mic level", "麦克风音量"},
    {change, "Change", "更改"},
    {openRecordingFolder, "Open recording folder", "打开录音文件夹"},
    {recordingSaved, "Recording saved", "录音已保存"},
    {playRecording, "Play recording", "播放录音"},
    {showInFinder, "Show in Finder", "在访达中显示"},
    {stopRecording, "Stop Recording", "停止录音"},
    {startRecording, "Start Recording", "开始录音"},
    {chooseRecordingFolder, "Choose Recording Folder", "选择录音文件夹"},
    {choose, "Choose", "选择"},
    {sleepSaved, "Recording was interrupted by sleep. The captured audio was saved successfully.",
     "电脑进入睡眠，录音已中断；已成功保存已录制的音频。"},
    {captureInterruptedSaved,
     "Audio capture was interrupted. The captured audio was saved successfully.",
     "音频采集被中断，已成功保存已录制的音频。"},
    {diskNearlyFullSaved,
     "The disk is nearly full, so the recording was ended. What was captured was saved.",
     "磁盘空间即将用尽，录音已结束；已保存已录制的音频。"},
    {noAudioSource, "Turn on System Audio or Microphone before recording.",
     "请先开启系统声音或麦克风。"},
    {screenPermissionDenied,
     "Screen & System Audio Recording permission is required. Enable Vantoro in System Settings, "
     "then reopen the app.",
     "需要屏幕与系统声音录制权限。请在系统设置中允许 Vantoro，然后重新打开应用。"},
    {microphonePermissionDenied,
     "Microphone permission is required. Enable Vantoro in System Settings and try again.",
     "需要麦克风权限。请在系统设置中允许 Vantoro 后重试。"},
    {microphonePermissionOnStart, "Click Start Recording to request microphone access.",
     "点击开始录音时申请麦克风权限。"},
    {noDisplayAvailable, "Vantoro could not find an available display to capture.",
     "Vantoro 找不到可用的显示器。"},
    {writerSetupFailed, "Vantoro could not prepare the audio file.", "Vantoro 无法准备录音文件。"},
    {noAudioCaptured, "No audio was captured. Check the selected sources and try again.",
     "没有采集到音频，请检查已选择的音频来源。"},
    {exportFailed, "Vantoro could not create the final M4A file.",
     "Vantoro 无法创建最终 M4A 文件。"},
    {diskTooFull,
     "There is not enough room on the disk for a recording. Free some space, or choose another "
     "folder.",
     "磁盘空间不足，无法录音。请释放一些空间，或更改录音文件夹。"},
};

L10n::Table tableOf(std::string_view KeyRow::* text) {
    L10n::Table table;
    for (const auto& row : keyRows) {
        table.emplace(row.key, row.*text);
    }
    return table;
}

} // namespace

const L10n::Table& L10n::english() {
    static const Table table = tableOf(&KeyRow::english);
    return table;
}

const L10n::Table& L10n::chinese() {
    static const Table table = tableOf(&KeyRow::chinese);
    return table;
}

} // namespace vantoro
