// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QLabel>

#include "ui/style/tones.h"

namespace vantoro {

/// A label that keeps its tone when the desktop's palette changes.
class TonedLabel : public QLabel {
    Q_OBJECT

public:
    TonedLabel(Tone tone, const QFont& font, QWidget* parent = nullptr);

    void setTone(Tone tone);

protected:
    void changeEvent(QEvent* event) override;

private:
    void applyTone();

    Tone tone_;
};

/// A one-line label that elides its middle if space is short.
class ElidedLabel final : public TonedLabel {
    Q_OBJECT

public:
    ElidedLabel(Tone tone, const QFont& font, QWidget* parent = nullptr);

    void setText(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantoro
