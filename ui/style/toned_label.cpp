// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/toned_label.h"

#include <QtCore/QEvent>
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
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyTone();
    }
}

void TonedLabel::applyTone() {
    auto own = QApplication::palette();
    own.setColor(QPalette::WindowText, toneColour(tone_, own));
    setPalette(own);
}

} // namespace vantoro
