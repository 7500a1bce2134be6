// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

#include "l10n/app_language.h"
#include "platform/desktop/remote/control_client.h"

namespace vantoro {

/// What the running programs do, as one line of text without its end.
std::string statusLine(const std::vector<desktop::RunningProgram>& programs, AppLanguage language);

/// The same as a JSON object in one line; docs/control.md describes it.
std::string statusObject(const std::vector<desktop::RunningProgram>& programs,
                         AppLanguage language);

} // namespace vantoro
