// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::testing {

/// As the desktop does when an assistive technology begins or ends to listen. Where there is no
/// desktop, only the toolkit's inner parts can say so.
void switchAccessibility(bool on);

} // namespace vantoro::testing
