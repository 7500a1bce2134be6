// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>

namespace vantoro {

/// Makes Return and Enter work like Space on a button that only accepts Space. False for any other
/// key.
inline bool clickByEnter(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) {
        return false;
    }
    button.click();
    return true;
}

} // namespace vantoro
