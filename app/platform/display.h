// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QtGlobal>

namespace vantoro {

/// Whether this environment has a desktop to show a window on.
inline bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

} // namespace vantoro
