// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/wheel_passer.h"

#include <QtCore/QEvent>

namespace vantoro {

WheelPasser::WheelPasser(QWidget& control) : QObject(&control) {
    control.setFocusPolicy(Qt::StrongFocus);
    control.installEventFilter(this);
}

bool WheelPasser::eventFilter(QObject* control, QEvent* event) {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(control)->hasFocus()) {
        return false;
    }
    event->ignore(); // so that the parent receives it
    return true;
}

} // namespace vantoro
