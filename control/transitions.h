// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include "control/recording_state.h"
#include "l10n/l10n.h"

namespace vantoro {

// The rules of the recording state machine.

/// Whether a recording is starting, running or being saved. Nothing else may start then, and
/// salvage results are not shown.
bool isBusy(RecordingState::Case state);

/// Whether a recording is starting or running.
bool isUnderWay(RecordingState::Case state);

/// Whether the recorder is busy with anything but recording.
bool isProcessing(RecordingState::Case state);

bool canStart(RecordingState::Case state, bool captureSystemAudio, bool captureMicrophone);

/// The reason to keep when another stop arrives before the recording runs: sleep replaces any
/// reason; others replace only the user's, which needs no message.
StopReason pendingStop(std::optional<StopReason> pending, StopReason arrived);

/// The key of the status line.
L10n::Key statusKey(RecordingState::Case state);

/// The key of the message that says why a saved recording ended; none if the user stopped it.
std::optional<L10n::Key> savedMessageKey(StopReason reason);

} // namespace vantoro
