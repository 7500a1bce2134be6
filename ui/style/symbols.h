// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>

namespace vantoro {

/// The symbols for things and actions: of one colour, sharp at any size.
enum class Symbol : std::uint8_t {
    checkmark,
    checkmarkCircle,
    computer,
    exclamation,
    exclamationCircle,
    folder,
    microphone,
    open,
    play,
    recordCircle,
    refresh,
    speaker,
    stop,
    waveform,
};

/// `size` in logical pixels, square; `scale` is the display's pixel ratio.
QPixmap symbolPixmap(Symbol symbol, const QColor& colour, int size, double scale);

/// Drawn in the colour at any requested size; paler if disabled.
QIcon symbolIcon(Symbol symbol, const QColor& colour);

QIcon applicationIcon();

} // namespace vantoro
