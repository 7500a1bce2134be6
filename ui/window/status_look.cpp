// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/status_look.h"

namespace vantoro {

StatusLook lookOf(RecordingState::Case state) {
    using enum RecordingState::Case;
    using Key = L10n::Key;
    switch (state) {
    case preparing:
        return {Tone::accent, Symbol::recordCircle, Key::checkingPermissions};
    case recording:
        return {Tone::recording, Symbol::waveform, Key::capturingAudio};
    case processing:
        return {Tone::accent, Symbol::recordCircle, Key::mixingTracks};
    case completed:
        return {Tone::saved, Symbol::checkmark, Key::recordingReady};
    case failed:
        return {Tone::attention, Symbol::exclamation, std::nullopt};
    case idle:
        break;
    }
    return {Tone::accent, Symbol::recordCircle, Key::m4aAudio};
}

} // namespace vantoro
