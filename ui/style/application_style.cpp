// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/application_style.h"

namespace vantoro {

QIcon ApplicationStyle::standardIcon(StandardPixmap icon, const QStyleOption* option,
                                     const QWidget* widget) const {
    if (icon == SP_ToolBarHorizontalExtensionButton) {
        return {};
    }
    return QProxyStyle::standardIcon(icon, option, widget);
}

} // namespace vantoro
