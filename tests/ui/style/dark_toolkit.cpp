// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/ui/style/dark_toolkit.h"

#include <utility>

#include <QtGui/private/qguiapplication_p.h>
#include <QtGui/qpa/qplatformtheme.h>

namespace vantoro::testing {

namespace {

class DarkTheme final : public QPlatformTheme {
public:
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    Qt::ColorScheme colorScheme() const override { return Qt::ColorScheme::Dark; }
#else
    Appearance appearance() const override { return Appearance::Dark; }
#endif
};

DarkTheme darkTheme;
QPlatformTheme* usual = nullptr;

} // namespace

DarkToolkit::DarkToolkit() {
    usual = std::exchange(QGuiApplicationPrivate::platform_theme, &darkTheme);
}

DarkToolkit::~DarkToolkit() {
    QGuiApplicationPrivate::platform_theme = usual;
}

} // namespace vantoro::testing
