// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>

#include <QtCore/QSize>

namespace vantoro {

// The window's size, as it is remembered between runs: "WIDTHxHEIGHT" in logical pixels.

std::string textOf(const QSize& size);

/// None if the text is no size.
std::optional<QSize> sizeOf(const std::string& text);

/// What the window opens at: the size that its user gave it, or the one that it needs; as far as it
/// fits on the screen, whose space without the desktop's panels is `room`.
QSize openingSize(const std::optional<QSize>& remembered, const QSize& needed, const QSize& room);

} // namespace vantoro
