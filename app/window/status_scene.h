// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

#include "control/recording_state.h"
#include "l10n/l10n.h"
#include "ui/ports/status_area.h"

namespace vantoro {

/// What the items in the status area tell of recording, apart from levels.
struct StatusScene {
    RecordingState::Case state = RecordingState::Case::idle;
    bool canStart = false;
    std::int64_t elapsedSeconds = 0;
};

/// In the user's language.
StatusMenu statusMenu(const StatusScene& scene, const L10n& texts);

/// The recorded time; empty unless a recording runs.
std::string toolTipDetail(const StatusScene& scene, const L10n& texts);

} // namespace vantoro
