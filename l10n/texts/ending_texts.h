// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

#include "l10n/app_language.h"

namespace vantoro {

/// What the program ends in the middle of.
enum class EndingWork : std::uint8_t { start, saving, salvage };

/// Why it does not wait for that.
enum class EndingCause : std::uint8_t {
    standstill, ///< it has not got on for seconds
    askedAgain, ///< the user is impatient
};

/// What the program says when it ends in the middle of its work: what it has waited for, and what
/// is kept in `folder`, that of the recordings. UTF-8, one line. Any thread.
std::string endingText(EndingWork work, EndingCause cause, const std::string& folder,
                       AppLanguage language);

} // namespace vantoro
