// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/symbol_button.h"

#include <QtCore/QEvent>

#include "ui/style/enter_key.h"

namespace vantoro {

namespace {

constexpr int symbolSize = 16;

} // namespace

SymbolButton::SymbolButton(Symbol symbol, QWidget* parent) : QToolButton(parent), symbol_(symbol) {
    setIconSize({symbolSize, symbolSize});
    setFocusPolicy(Qt::StrongFocus);
    drawSymbol();
}

void SymbolButton::setHelp(const QString& help, std::optional<QKeyCombination> keys) {
    setToolTip(keys ? withShortcut(help, *keys) : help);
    setAccessibleName(help);
}

void SymbolButton::changeEvent(QEvent* event) {
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        drawSymbol();
    }
}

void SymbolButton::keyPressEvent(QKeyEvent* event) {
    if (!clickByEnter(*this, *event)) {
        QToolButton::keyPressEvent(event);
    }
}

void SymbolButton::drawSymbol() {
    setIcon(symbolIcon(symbol_, palette().color(QPalette::ButtonText)));
}

} // namespace vantoro
