// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/decorations.h"

#include <algorithm>

#include <QtGui/QPainter>

namespace vantoro {

Separator::Separator(QWidget* parent, int endMargin) : QWidget(parent), endMargin_(endMargin) {
    setFixedHeight(1);
}

void Separator::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect().adjusted(0, 0, -endMargin_, 0), lineColour(palette()));
}

HeaderIcon::HeaderIcon(QWidget* parent) : QWidget(parent) {
    setFixedSize(38, 38);
}

void HeaderIcon::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    applicationIcon().paint(&painter, rect());
}

SymbolLabel::SymbolLabel(Symbol symbol, Tone tone, int size, int width, QWidget* parent)
    : QWidget(parent), symbol_(symbol), tone_(tone), size_(size) {
    setFixedSize(std::max(size, width), size);
}

void SymbolLabel::setSymbol(Symbol symbol, Tone tone) {
    symbol_ = symbol;
    tone_ = tone;
    update();
}

void SymbolLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(
        QRect((width() - size_) / 2, 0, size_, size_),
        symbolPixmap(symbol_, toneColour(tone_, palette()), size_, devicePixelRatioF()));
}

} // namespace vantoro
