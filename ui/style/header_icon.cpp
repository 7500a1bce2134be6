// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/header_icon.h"

#include <QtGui/QPainter>

#include "ui/style/symbols.h"

namespace vantoro {

namespace {

constexpr int side = 38;

} // namespace

HeaderIcon::HeaderIcon(QWidget* parent) : QWidget(parent) {
    setFixedSize(side, side);
}

void HeaderIcon::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    applicationIcon().paint(&painter, rect());
}

} // namespace vantoro
