// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <system_error>

#include "l10n/app_language.h"

namespace vantoro {

/// Why the system refused something, without a full stop: in English the system's own words; in
/// Chinese ours for what a file system or a disk may answer, and the system's for all else. Any
/// thread.
std::string systemWords(const std::error_code& code, AppLanguage language);

} // namespace vantoro
