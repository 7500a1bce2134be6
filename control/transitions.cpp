// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/transitions.h"

namespace vantoro {

using enum RecordingState::Case;

bool isBusy(RecordingState::Case state) {
    return state == preparing || state == recording || state == processing;
}

bool isUnderWay(RecordingState::Case state) {
    return state == preparing || state == recording;
}

bool isProcessing(RecordingState::Case state) {
    return state == preparing || state == processing;
}

bool canStart(RecordingState::Case state, bool captureSystemAudio, bool captureMicrophone) {
    return !isBusy(state) && (captureSystemAudio || captureMicrophone);
}

StopReason pendingStop(std::optional<StopReason> pending, StopReason arrived) {
    const bool replaces = arrived == StopReason::systemSleep || pending == StopReason::user;
    return replaces ? arrived : pending.value_or(arrived);
}

L10n::Key statusKey(RecordingState::Case state) {
    switch (state) {
    case idle:
        return L10n::Key::ready;
    case preparing:
        return L10n::Key::preparing;
    case recording:
        return L10n::Key::recording;
    case processing:
        return L10n::Key::saving;
    case completed:
        return L10n::Key::saved;
    case failed:
        break;
    }
    return L10n::Key::needsAttention;
}

std::optional<L10n::Key> savedMessageKey(StopReason reason) {
    switch (reason) {
    case StopReason::systemSleep:
        return L10n::Key::sleepSaved;
    case StopReason::captureInterruption:
        return L10n::Key::captureInterruptedSaved;
    case StopReason::diskNearlyFull:
        return L10n::Key::diskNearlyFullSaved;
    case StopReason::user:
        break;
    }
    return std::nullopt;
}

} // namespace vantoro
