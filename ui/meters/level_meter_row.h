// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "ui/meters/level_bar.h"
#include "ui/style/toned_label.h"

namespace vantoro {

/// A source's name, its level as a bar, and in hundredths.
class LevelMeterRow final : public QWidget {
    Q_OBJECT

public:
    explicit LevelMeterRow(Tone tone, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// Of its column: wider than usual only for text that the user has made larger.
    int titleWidth() const;
    void setTitleWidth(int width);
    /// 0 to 1.
    void setLevel(double level);
    /// Why nothing is to be expected of the source, which the level gives way to; empty while
    /// something is.
    void setTrouble(const QString& trouble);

private:
    void showPercentage();

    QLabel* title_;
    LevelBar* bar_;
    TonedLabel* percentage_;
    double level_ = 0;
};

} // namespace vantoro
