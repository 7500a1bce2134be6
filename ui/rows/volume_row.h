// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

#include "ui/rows/volume_slider.h"
#include "ui/style/decorations.h"
#include "ui/style/labels.h"

namespace vantoro {

/// The volume of a source in the mix.
class VolumeRow final : public QWidget {
    Q_OBJECT

public:
    /// Sliders have integer values; steps this small are invisible.
    static constexpr int stepsPerUnit = 1000;

    /// `usual`: the volume that a double click sets.
    VolumeRow(Symbol symbol, double usual, QWidget* parent = nullptr);

    void setTitle(const QString& title);
    /// The width of the title column; wider than usual only for enlarged text.
    int titleWidth() const;
    void setTitleWidth(int width);
    /// 0 to 1.25; 1 leaves the source unchanged.
    void setVolume(double volume);
    /// Dims the row if false.
    void setUsable(bool usable);

Q_SIGNALS:
    void volumeMoved(double volume); ///< by the user

private:
    SymbolLabel* symbol_;
    TonedLabel* title_;
    VolumeSlider* slider_;
    TonedLabel* percentage_;
};

} // namespace vantoro
