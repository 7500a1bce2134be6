// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/style/toned_label.h"

namespace vantoro {

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
