// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QWidget>

#include "ui/meters/level_bar.h"
#include "ui/style/labels.h"

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

/// The level meters of both sources, one above the other.
class LevelMeterPanel final : public QWidget {
    Q_OBJECT

public:
    explicit LevelMeterPanel(QWidget* parent = nullptr);

    /// `name` is the panel's accessible name.
    void setTexts(const QString& name, const QString& systemAudio, const QString& microphone);
    /// 0 to 1 each.
    void setLevels(double systemAudio, double microphone);
    /// See `LevelMeterRow::setTrouble`.
    void setTroubles(const QString& systemAudio, const QString& microphone);

private:
    LevelMeterRow* systemAudio_;
    LevelMeterRow* microphone_;
};

} // namespace vantoro
