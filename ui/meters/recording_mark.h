// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QColor>
#include <QtGui/QImage>

namespace vantoro {

/// Draws a dot of this colour over the upper left corner of a symbol, with a line of the opposite
/// tone around it, so that its shape alone tells a recording, on any panel.
void drawRecordingMark(QImage& symbol, const QColor& color);

} // namespace vantoro
