// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

class QWidget;

namespace vantoro {

/// Shows a window in front of all others and focuses it, even if it was hidden or minimised.
/// `activationToken` is the desktop's permission to do so, issued for a user action; if it is
/// empty, some desktops only mark the window as demanding attention. Main thread.
void bringToFront(QWidget& window, const std::string& activationToken);

} // namespace vantoro
