// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>

namespace vantoro {

/// The drawings that stand for things and actions: of one colour, sharp at any size.
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

/// `size` in logical pixels, square; `scale` is the display's.
QPixmap symbolPixmap(Symbol symbol, const QColor& colour, int size, double scale);

/// Drawn in the colour at whatever size it is asked for; paler where it is disabled.
QIcon symbolIcon(Symbol symbol, const QColor& colour);

/// The program's own picture.
QIcon applicationIcon();

} // namespace vantoro
