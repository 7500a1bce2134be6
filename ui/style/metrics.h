// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>

#include <QtGui/QFontMetrics>

namespace vantoro {

// Lengths that several parts share, in logical pixels.

/// Between the window's edges and its contents.
inline constexpr int padding = 20;

/// Around a control that this program draws, for its focus ring. What is drawn lines up with other
/// parts' edges; the ring does not.
inline constexpr int ringMargin = 3;

/// Where a row's symbol has its middle, and where its text begins.
inline constexpr int symbolMiddle = 12;
inline constexpr int textStart = 34;

/// Between two rows. Tall lines hold much room themselves, and a window has only so much.
inline int rowGap(const QFont& font) {
    return std::clamp((32 - QFontMetrics(font).height()) / 3, 3, 6);
}

} // namespace vantoro
