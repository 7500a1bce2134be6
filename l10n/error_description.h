// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <string>

#include "engine/recording_types.h"
#include "l10n/app_language.h"

namespace vantoro {

/// What the user reads of a failure of the recorder; composed anew at each call. Any thread.
std::string errorDescription(const RecordingError& error, AppLanguage language);

/// As above for any error: of the platform's own errors their text, which names what went wrong.
/// The pointer must not be null.
std::string errorDescription(const std::exception_ptr& error, AppLanguage language);

} // namespace vantoro
