// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QPushButton>

#include "ui/style/tones.h"

namespace vantoro {

/// The main button: starts a recording or, in red, stops it.
class RecordButton final : public QPushButton {
    Q_OBJECT

public:
    explicit RecordButton(QWidget* parent = nullptr);

    void setTexts(const QString& start, const QString& stop);
    void setStops(bool stops);
    /// Enables or disables the button. Keeps the keyboard's focus for itself meanwhile, and takes
    /// it while nothing has it.
    void setUsable(bool usable);

    /// The same for both texts.
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ButtonColours colours() const;

    QString start_;
    QString stop_;
    bool stops_ = false;
};

} // namespace vantoro
