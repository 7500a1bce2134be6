// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>

#include <QtWidgets/QToolButton>

#include "ui/style/keys.h"
#include "ui/style/symbols.h"

namespace vantoro {

/// A small button with a symbol.
class SymbolButton final : public QToolButton {
    Q_OBJECT

public:
    explicit SymbolButton(Symbol symbol, QWidget* parent = nullptr);

    /// The tool tip, which also names the keys, if any, and the accessible name.
    void setHelp(const QString& help, std::optional<QKeyCombination> keys = std::nullopt);

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void drawSymbol();

    Symbol symbol_;
};

} // namespace vantoro
