// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "ui/meters/level_bar.h"
#include "ui/style/toned_label.h"

namespace vantoro {

/// A source's name, and its level as a bar and in percent.
class LevelMeterRow final : public QWidget {
    Q_OBJECT

public:
    explicit LevelMeterRow(Tone tone, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// The width of the title column; wider than usual only for enlarged text.
    int titleWidth() const;
    void setTitleWidth(int width);
    /// 0 to 1.
    void setLevel(double level);
    /// Why the source delivers nothing, shown instead of the level; empty if it delivers.
    void setTrouble(const QString& trouble);

private:
    void showPercentage();

    QLabel* title_;
    LevelBar* bar_;
    TonedLabel* percentage_;
    double level_ = 0;
};

} // namespace vantoro
