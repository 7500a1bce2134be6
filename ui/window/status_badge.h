// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QVariantAnimation>
#include <QtWidgets/QWidget>

#include "ui/style/symbols.h"
#include "ui/style/tones.h"

namespace vantoro {

/// A tinted circle with a symbol of the status, or with a turning arc while busy.
class StatusBadge final : public QWidget {
    Q_OBJECT

public:
    explicit StatusBadge(QWidget* parent = nullptr);

    void setStatus(Symbol symbol, Tone tone);
    void setBusy(bool busy);

    bool isBusy() const { return busy_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Symbol symbol_ = Symbol::recordCircle;
    Tone tone_ = Tone::accent;
    bool busy_ = false;
    QVariantAnimation turn_; // runs only while busy
};

} // namespace vantoro
