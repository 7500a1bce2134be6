// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <thread>

namespace vantoro::desktop {

/// Loads the font configuration on a thread of its own, so that it is ready when the toolkit
/// measures its first text; it takes a tenth of the window's start. Call before any other window
/// code. Destroying the result joins the thread.
std::jthread readFontConfigurationAhead();

} // namespace vantoro::desktop
