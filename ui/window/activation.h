// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

class QWidget;

namespace vantoro {

/// Shows a window in front of all others and gives it the keyboard, whether it was hidden,
/// minimised or behind them. `activationToken` is the desktop's leave to do so, given to whoever
/// the user asked for it; without one (empty) some desktops only mark the window as wanting
/// attention. Main thread.
void bringToFront(QWidget& window, const std::string& activationToken);

} // namespace vantoro
