// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "control/recording_properties.h"
#include "l10n/l10n.h"

namespace vantoro {

/// The progress line while recording: the time, and the levels of the enabled sources.
std::string recordingLine(const RecordingProperties::Values& values, const L10n& texts);

/// The progress line while the final file is written; `fraction` is 0 to 1.
std::string savingLine(double fraction, const L10n& texts);

} // namespace vantoro
