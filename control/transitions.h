// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>

#include "control/recording_state.h"
#include "l10n/l10n.h"

namespace vantoro {

// What follows from what, by the state alone.

/// Whether a recording is being prepared, made or saved: then nothing else may begin, and what a
/// salvage found is not shown.
bool isBusy(RecordingState::Case state);

/// Whether a recording is being prepared or made.
bool isUnderWay(RecordingState::Case state);

/// Whether the recorder is at work, and nothing is being recorded.
bool isProcessing(RecordingState::Case state);

bool canStart(RecordingState::Case state, bool captureSystemAudio, bool captureMicrophone);

/// What becomes of a stop that the system asks for.
enum class StopAnswer : std::uint8_t {
    ignore,
    keepPending, ///< carried out as soon as the recording has begun
    stop,
};
StopAnswer answerToStop(RecordingState::Case state);

/// The reason to stop for, when another one arrives before the recording has begun: sleep replaces
/// any, all others only the user's wish, which needs no message.
StopReason pendingStop(std::optional<StopReason> pending, StopReason arrived);

/// The text that says how things stand.
L10n::Key statusKey(RecordingState::Case state);

/// The text that says why a saved recording ended; none when the user wished it.
std::optional<L10n::Key> savedMessageKey(StopReason reason);

} // namespace vantoro
