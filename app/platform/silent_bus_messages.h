// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "l10n/app_language.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// What the user reads of buses that do not answer, in whole lines: what the program does without.
std::string silentBusMessages(const desktop::SilentBuses& silent, AppLanguage language);

} // namespace vantoro
