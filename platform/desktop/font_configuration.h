// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <thread>

namespace vantoro::desktop {

/// Reads the fonts' configuration on a thread of its own, for the toolkit to find it read when it
/// measures its first text: that takes a tenth of what a window needs until it can be shown. To be
/// called before anything else of the window; ended when what is returned is destroyed.
std::jthread readFontConfigurationAhead();

} // namespace vantoro::desktop
