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
    strongest, ///< what is drawn pale, and must be readable still
};

/// Stands out from all the backgrounds below: texts and `attention` by 4.5, other tones by 3.
QColor toneColour(Tone tone, const QPalette& palette);

/// The background of a box on the window.
QColor cardColour(const QPalette& palette);

/// The background of what is tinted in a colour.
QColor tintOf(const QColor& colour, const QPalette& palette);

struct ButtonColours {
    QColor ground;
    QColor ink; ///< readable on the ground
};

ButtonColours buttonColours(Tone tone, const QPalette& palette);
ButtonColours disabledButtonColours(const QPalette& palette);

/// A switch that is off; stands out from a box by 3.
QColor offColour(const QPalette& palette);

/// Black or white, for a symbol on this ground.
QColor symbolOn(const QColor& ground);

/// Makes disabled texts readable, and those of a window that is not active as clear as in the
/// active one: users read them while they work in another window. To set on a widget.
QPalette readablePalette(QPalette palette);

/// The line between two rows, or around a box.
QColor lineColour(const QPalette& palette);

/// From 1 (same colour) to 21 (black and white). Readable text needs 4.5, or 3 if it is large.
double contrast(const QColor& one, const QColor& other);

bool isDark(const QPalette& palette);

} // namespace vantoro
