// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::posix {

/// Makes UTF-8 the encoding, whatever the locale's is: Qt does so too, but prints a warning, in a
/// job of cron for example. The user's language stays. Call before any thread starts.
void useUtf8() noexcept;

} // namespace vantoro::posix
