// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

#include "l10n/app_language.h"

namespace vantoro {

/// The work that the program abandons when it ends.
enum class EndingWork : std::uint8_t { start, saving, salvage };

/// Why it does not wait for that work.
enum class EndingCause : std::uint8_t {
    standstill, ///< no progress for seconds
    askedAgain, ///< the user asked a second time
};

/// The message when the program ends without finishing its work: what it was waiting for, and what
/// stays in `folder`, the recording folder. UTF-8, one line. Any thread.
std::string endingText(EndingWork work, EndingCause cause, const std::string& folder,
                       AppLanguage language);

} // namespace vantoro
