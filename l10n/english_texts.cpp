// SPDX-License-Identifier: GPL-3.0-or-later

#include <iterator>
#include <utility>

#include "l10n/l10n.h"

namespace vantoro {

namespace {

using enum L10n::Key;

constexpr std::pair<L10n::Key, std::string_view> englishRows[] = {
    {language, "Language"},
    {checkForUpdates, "Check for Updates"},
    {currentVersion, "Version"},
    {alreadyLatest, "You are up to date."},
    {updateCheckFailed, "Could not check for updates. Try again later."},
    {downloadUpdate, "Download Update"},
    {audioInputLevels, "Audio input levels"},
    {refreshAudioDevices, "Refresh audio devices and permissions"},
    {ok, "OK"},
    {close, "Close"},
    {ready, "Ready"},
    {preparing, "Preparing"},
    {recording, "Recording"},
    {saving, "Saving"},
    {saved, "Saved"},
    {needsAttention, "Needs attention"},
    {m4aAudio, "M4A audio"},
    {checkingPermissions, "Checking permissions and audio devices"},
    {capturingAudio, "System audio and microphone are being captured"},
    {mixingTracks, "Mixing audio tracks"},
    {recordingReady, "Your recording is ready"},
    {audioSources, "Audio Sources"},
    {systemAudio, "System Audio"},
    {systemMeter, "System"},
    {meetingAndAppSound, "Meeting and app sound"},
    {microphone, "Microphone"},
    {microphoneMeter, "Mic"},
    {yourVoice, "Your voice"},
    {input, "Input"},
    {screenAndSystemAudio, "Screen & System Audio"},
    {allowed, "Allowed"},
    {required, "Required"},
    {settings, "Settings"},
    {recordingPanel, "Recording"},
    {systemLevel, "System level"},
    {micLevel, "Mic level"},
    {change, "Change"},
    {openRecordingFolder, "Open recording folder"},
    {recordingSaved, "Recording saved"},
    {playRecording, "Play recording"},
    {showInFinder, "Show in Finder"},
    {stopRecording, "Stop Recording"},
    {startRecording, "Start Recording"},
    {chooseRecordingFolder, "Choose Recording Folder"},
    {choose, "Choose"},
    {sleepSaved, "Recording was interrupted by sleep. The captured audio was saved successfully."},
    {captureInterruptedSaved,
     "Audio capture was interrupted. The captured audio was saved successfully."},
    {diskNearlyFullSaved,
     "The disk is nearly full, so the recording was ended. What was captured was saved."},
    {noAudioSource, "Turn on System Audio or Microphone before recording."},
    {screenPermissionDenied, "Screen & System Audio Recording permission is required. Enable "
                             "Vantoro in System Settings, then reopen the app."},
    {microphonePermissionDenied,
     "Microphone permission is required. Enable Vantoro in System Settings and try again."},
    {microphonePermissionOnStart, "Click Start Recording to request microphone access."},
    {noDisplayAvailable, "Vantoro could not find an available display to capture."},
    {writerSetupFailed, "Vantoro could not prepare the audio file."},
    {noAudioCaptured, "No audio was captured. Check the selected sources and try again."},
    {exportFailed, "Vantoro could not create the final M4A file."},
    {diskTooFull,
     "There is not enough room on the disk for a recording. Free some space, or choose "
     "another folder."},
};

} // namespace

const L10n::Table& L10n::english() {
    static const Table table(std::begin(englishRows), std::end(englishRows));
    return table;
}

} // namespace vantoro
