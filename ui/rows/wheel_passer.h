// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

namespace vantoro {

/// Passes the wheel on to what scrolls around the control unless the control has the focus: whoever
/// scrolls past it would change its value. Nor does the wheel give it the focus.
class WheelPasser final : public QObject {
    Q_OBJECT

public:
    explicit WheelPasser(QWidget& control);

protected:
    bool eventFilter(QObject* control, QEvent* event) override;
};

} // namespace vantoro
