// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <thread>

namespace vantoro::desktop {

/// Loads the font configuration, a tenth of the window's start, on a thread of its own. Call before
/// any other window code. Destroying the result joins the thread.
std::jthread readFontConfigurationAhead();

} // namespace vantoro::desktop
