// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include <QtGui/QColor>
#include <QtGui/QPalette>

namespace vantoro {

/// What a colour says, whatever palette the desktop has.
enum class Tone : std::uint8_t {
    accent,
    recording,
    saved,
    attention,
    systemAudio,
    microphone,
    secondary, ///< of text that matters less
    primary,   ///< of all other text
};

/// Readable on the palette's window.
QColor toneColour(Tone tone, const QPalette& palette);

/// Of a box that lies on the window.
QColor cardColour(const QPalette& palette);

/// Of a button that cannot be pressed now, and of what is written on it.
QColor idleGround(const QPalette& palette);
QColor idleInk(const QPalette& palette);

/// Of a line between two rows, or around a box.
QColor lineColour(const QPalette& palette);

/// From 1, of a colour with itself, to 21, of black and white. Text needs 4.5 to be read, or 3 when
/// it is large.
double contrast(const QColor& one, const QColor& other);

bool isDark(const QPalette& palette);

} // namespace vantoro
