// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "ui/rows/toggle_switch.h"
#include "ui/style/symbols.h"

namespace vantoro {

/// A source, its description, and the switch that turns it on.
class SourceRow final : public QWidget {
    Q_OBJECT

public:
    explicit SourceRow(Symbol symbol, QWidget* parent = nullptr);

    void setTexts(const QString& title, const QString& subtitle);
    void setOn(bool on);

Q_SIGNALS:
    void switched(bool on); ///< by the user

private:
    QLabel* title_;
    QLabel* subtitle_;
    ToggleSwitch* switch_;
};

} // namespace vantoro
