// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/ui/style/accessibility_switch.h"

#include <QtGui/private/qguiapplication_p.h>
#include <QtGui/qpa/qplatformaccessibility.h>
#include <QtGui/qpa/qplatformintegration.h>

namespace vantoro::testing {

void switchAccessibility(bool on) {
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(on);
}

} // namespace vantoro::testing
