// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

#include "ui/style/symbols.h"
#include "ui/style/tones.h"

namespace vantoro {

// Widgets that only decorate: without a text, hidden from screen readers.

/// A thin horizontal line between two widgets.
class Separator final : public QWidget {
    Q_OBJECT

public:
    /// Ends before its right edge by the margin.
    explicit Separator(QWidget* parent, int endMargin = 0);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int endMargin_;
};

class HeaderIcon final : public QWidget {
    Q_OBJECT

public:
    explicit HeaderIcon(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A symbol beside a text with the same meaning.
class SymbolLabel final : public QWidget {
    Q_OBJECT

public:
    /// `size` of the drawing, in pixels, centred in a label at least `width` wide.
    SymbolLabel(Symbol symbol, Tone tone, int size, int width, QWidget* parent = nullptr);

    void setSymbol(Symbol symbol, Tone tone);

    void setTone(Tone tone) { setSymbol(symbol_, tone); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol symbol_;
    Tone tone_;
    int size_;
};

} // namespace vantoro
