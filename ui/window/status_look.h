// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include "control/recording_state.h"
#include "l10n/l10n.h"
#include "ui/style/symbols.h"
#include "ui/style/tones.h"

namespace vantoro {

/// The appearance of a state.
struct StatusLook {
    Tone tone = Tone::accent;
    Symbol symbol = Symbol::recordCircle;
    std::optional<L10n::Key> detail; ///< none for a failure, whose text is the detail
};

StatusLook lookOf(RecordingState::Case state);

} // namespace vantoro
