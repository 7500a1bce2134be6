// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/style/toned_label.h"

namespace vantoro {

/// One line of text that gives way in its middle when there is no room for all of it.
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
