// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>
#include <QtWidgets/QSlider>
#include <QtWidgets/QWidget>

#include "ui/style/symbols.h"

namespace vantoro {

/// How loud a source is in the mix.
class VolumeRow final : public QWidget {
    Q_OBJECT

public:
    /// A slider counts in whole steps; so fine are not seen.
    static constexpr int stepsPerUnit = 1000;

    explicit VolumeRow(Symbol symbol, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// Of its column: wider than usual only for text that the user has made larger.
    int titleWidth() const;
    void setTitleWidth(int width);
    /// 0 to 1.25; 1 leaves the source as it is.
    void setVolume(double volume);
    /// A row without use is dimmed.
    void setUsable(bool usable);

Q_SIGNALS:
    void volumeMoved(double volume); ///< by the user

private:
    QLabel* title_;
    QSlider* slider_;
    QLabel* percentage_;
};

} // namespace vantoro
