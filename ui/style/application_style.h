// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QProxyStyle>

namespace vantoro {

/// The desktop's style without one icon that this program never shows: that of a menu bar which
/// does not fit. It is an image file, and would load all image plugins before the window can be
/// shown.
class ApplicationStyle final : public QProxyStyle {
    Q_OBJECT

public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace vantoro
