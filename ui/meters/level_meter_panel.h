// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

#include "ui/meters/level_meter_row.h"

namespace vantoro {

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
