// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QToolButton>

#include "ui/style/symbols.h"

namespace vantoro {

/// A small button with a symbol; its tool tip is also its accessible name.
class SymbolButton final : public QToolButton {
    Q_OBJECT

public:
    explicit SymbolButton(Symbol symbol, QWidget* parent = nullptr);

    void setHelp(const QString& help);

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void drawSymbol();

    Symbol symbol_;
};

} // namespace vantoro
