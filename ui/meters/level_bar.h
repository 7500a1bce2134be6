// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QProgressBar>

#include "ui/style/tones.h"

namespace vantoro {

/// A level meter as a bar that fills from the left.
class LevelBar final : public QProgressBar {
    Q_OBJECT

public:
    explicit LevelBar(Tone tone, QWidget* parent = nullptr);

    /// 0 to 1.
    void setLevel(double level);
    /// Why the source delivers nothing; empty if it delivers.
    void setTrouble(const QString& trouble);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Tone tone_;
    double level_ = 0;
    bool isInTrouble_ = false;
};

} // namespace vantoro
