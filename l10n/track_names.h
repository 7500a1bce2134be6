// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include "engine/recording_types.h"
#include "l10n/preferences.h"

namespace vantoro {

/// In the user's language, if the user wants the sources' own files. Any thread.
std::optional<TrackNames> trackNames(const Preferences& preferences);

} // namespace vantoro
