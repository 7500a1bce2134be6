// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/activation.h"

#include <QtCore/QtGlobal>
#include <QtWidgets/QWidget>

namespace vantoro {

void bringToFront(QWidget& window, const std::string& activationToken) {
    if (!activationToken.empty()) {
        // Where the toolkit reads the token for a Wayland compositor; it uses each token once.
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(activationToken));
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
}

} // namespace vantoro
