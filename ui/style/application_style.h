// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QProxyStyle>

namespace vantoro {

/// The desktop's style without the icon of a menu bar that does not fit, which is never shown: as
/// an image file, it would load all image plugins before the window can be shown.
class ApplicationStyle final : public QProxyStyle {
    Q_OBJECT

public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace vantoro
