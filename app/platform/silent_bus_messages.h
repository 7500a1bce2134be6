// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "l10n/app_language.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// Tells the user which buses do not answer and what is missing without them; complete lines.
std::string silentBusMessages(const desktop::SilentBuses& silent, AppLanguage language);

} // namespace vantoro
