// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>

namespace vantoro {

/// Clicks a button that only accepts Space on Return and Enter; false for other keys.
inline bool clickByEnter(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) {
        return false;
    }
    button.click();
    return true;
}

} // namespace vantoro
