// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/separator.h"

#include <QtGui/QPainter>

#include "ui/style/tones.h"

namespace vantoro {

Separator::Separator(QWidget* parent) : QWidget(parent) {
    setFixedHeight(1);
}

void Separator::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), lineColour(palette()));
}

} // namespace vantoro
