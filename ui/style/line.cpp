// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/line.h"

#include <QtGui/QPainter>

#include "ui/style/tones.h"

namespace vantoro {

Line::Line(QWidget* parent) : QWidget(parent) {
    setFixedHeight(1);
}

void Line::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), lineColour(palette()));
}

} // namespace vantoro
