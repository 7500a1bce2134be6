// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "control/recording_properties.h"
#include "l10n/l10n.h"

namespace vantoro {

/// What a terminal shows while recording: the time, and the levels of the sources that are on.
std::string recordingLine(const RecordingProperties::Values& values, const L10n& texts);

/// What a terminal shows while the final file is made; `fraction` is 0...1.
std::string savingLine(double fraction, const L10n& texts);

} // namespace vantoro
