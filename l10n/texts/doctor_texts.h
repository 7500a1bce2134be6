// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "l10n/app_language.h"

namespace vantoro {

/// The lines of the doctor's report: one per finding, and advice (…Advice) for each problem.
enum class DoctorText : std::uint8_t {
    nothingIsWrong,
    whatToDo,
    soundServer,
    soundServerUnreachable,
    soundServerAdvice,
    sessionManager,
    sessionManagerMissing,
    sessionManagerAdvice,
    systemAudioAllowed,
    systemAudioRefused,
    systemAudioAdvice,
    systemAudioSandboxAdvice,
    outputs,
    outputsMissing,
    outputsAdvice,
    codedSound,
    codedSoundAdvice,
    microphone,
    microphoneDefault,
    microphoneMuted,
    microphoneMutedAdvice,
    microphoneAtZero,
    microphoneAtZeroAdvice,
    microphoneMissing,
    microphoneMissingAdvice,
    defaultMicrophoneMissing,
    defaultMicrophoneAdvice,
    permissionNotForbidden,
    permissionGranted,
    permissionUndecided,
    permissionDisabledBySettings,
    permissionDisabledByLockdown,
    permissionSettingsAdvice,
    permissionRefused,
    permissionRefusedAdvice,
    permissionUnknown,
    sessionBusMissing,
    sessionBusMissingAdvice,
    sessionBusSilent,
    desktopSilentAdvice,
    statusArea,
    statusAreaMissing,
    statusAreaAdvice,
    statusAreaUnknown,
    portal,
    portalMissing,
    portalAdvice,
    portalUnknown,
    sleepDelay,
    sleepDelayRefused,
    sleepDelayRefusedAdvice,
    loginManagerMissing,
    loginManagerAdvice,
    loginManagerUnknown,
    folder,
    folderToBeMade,
    folderSpace,
    folderRefused,
    folderRefusedAdvice,
    folderSpaceShort,
    folderSpaceAdvice,
    folderSilent,
    folderSilentAdvice,
    interruptedNone,
    interruptedWaiting,
    interruptedAdvice,
    interruptedUnknown,
};

/// The text, UTF-8, with %1, %2, … replaced by the arguments verbatim. Any thread.
std::string doctorText(DoctorText text, AppLanguage language,
                       const std::vector<std::string>& arguments = {});

} // namespace vantoro
