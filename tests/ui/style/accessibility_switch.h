// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::testing {

/// Does what the desktop does when an assistive technology starts or stops. Without a desktop, only
/// the toolkit's private API can.
void switchAccessibility(bool on);

} // namespace vantoro::testing
