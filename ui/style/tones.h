// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include <QtGui/QColor>
#include <QtGui/QPalette>

namespace vantoro {

/// What a colour means, independently of the desktop's palette.
enum class Tone : std::uint8_t {
    accent,
    recording,
    saved,
    attention,
    systemAudio,
    microphone,
    secondary, ///< less important text
    primary,   ///< all other text
};

/// Readable on the window background.
QColor toneColour(Tone tone, const QPalette& palette);

/// The background of a box on the window.
QColor cardColour(const QPalette& palette);

/// The background and text of a disabled button.
QColor idleGround(const QPalette& palette);
QColor idleInk(const QPalette& palette);

/// The line between two rows, or around a box.
QColor lineColour(const QPalette& palette);

/// From 1 (same colour) to 21 (black and white). Readable text needs 4.5, or 3 if it is large.
double contrast(const QColor& one, const QColor& other);

bool isDark(const QPalette& palette);

} // namespace vantoro
