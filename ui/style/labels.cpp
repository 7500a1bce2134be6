// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/labels.h"

#include <QtCore/QEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

namespace vantoro {

TonedLabel::TonedLabel(Tone tone, const QFont& font, QWidget* parent)
    : QLabel(parent), tone_(tone) {
    setFont(font);
    applyTone();
}

void TonedLabel::setTone(Tone tone) {
    tone_ = tone;
    applyTone();
}

void TonedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        applyTone();
    }
}

void TonedLabel::applyTone() {
    QPalette own; // all but the text follows the application's
    own.setColor(QPalette::WindowText, toneColour(tone_, QApplication::palette()));
    setPalette(own);
}

ElidedLabel::ElidedLabel(Tone tone, const QFont& font, QWidget* parent)
    : TonedLabel(tone, font, parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ElidedLabel::setText(const QString& text) {
    QLabel::setText(text);
    setToolTip(text);
}

QSize ElidedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()), fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 6, fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
}

} // namespace vantoro
