// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QProxyStyle>

namespace vantoro {

/// The desktop's style, but for one icon of the toolkit's that nobody sees, a menu bar that does
/// not fit: it is kept as a picture, and all readers of picture files would be loaded for it before
/// the window can be shown.
class ApplicationStyle final : public QProxyStyle {
    Q_OBJECT

public:
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace vantoro
