// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QKeyEvent>
#include <QtWidgets/QAbstractButton>

namespace vantoro {

/// Lets Return and Enter do what Space does, for a button that the toolkit lets only Space press.
/// False when it was another key.
inline bool clickByEnter(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) {
        return false;
    }
    button.click();
    return true;
}

} // namespace vantoro
