// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/dark_colours.h"

#include <QtGui/QStyleHints>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyle>

#include "ui/style/tones.h"

namespace vantoro {

namespace {

bool toolkitKnowsWhatIsPreferred() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    return QGuiApplication::styleHints()->colorScheme() != Qt::ColorScheme::Unknown;
#else
    return isDark(QApplication::palette()); // it only follows its themes, and only into the dark
#endif
}

bool hasColoursOfTheDesktop() {
    return QApplication::palette() != QApplication::style()->standardPalette();
}

} // namespace

QPalette darkPalette() {
    const QColor ink(0xf0f0f0);
    const QColor ground(0x323232);
    const QColor accent(0x308cc6);
    const QColor pale(0x828282);
    const auto dark = ground.darker(150);
    const auto shadow = dark.darker(135);
    const auto mid = ground.darker(130);
    QPalette palette(ink, ground, ground.lighter(150), dark, mid, ink, ground.darker(140));
    palette.setColor(QPalette::Midlight, mid.lighter(110));
    palette.setColor(QPalette::Shadow, shadow);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, ink);
    palette.setColor(QPalette::Link, accent);
    palette.setColor(QPalette::PlaceholderText, QColor(ink.red(), ink.green(), ink.blue(), 128));
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, pale);
    }
    palette.setColor(QPalette::Disabled, QPalette::Base, ground);
    palette.setColor(QPalette::Disabled, QPalette::Dark, QColor(0xd1d1d1).darker(110));
    palette.setColor(QPalette::Disabled, QPalette::Shadow, shadow.lighter(150));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x919191));
#if QT_VERSION >= QT_VERSION_CHECK(6, 6, 0)
    palette.setColor(QPalette::Accent, accent);
    palette.setColor(QPalette::Disabled, QPalette::Accent, QColor(0x919191));
#endif
    return palette;
}

DarkColours::DarkColours() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
    // It may learn it later than the program does.
    connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this,
            [this] { prefer(false); });
#endif
}

void DarkColours::prefer(bool dark) {
    if (!dark && isOurs_) {
        isOurs_ = false;
        QApplication::setPalette(QPalette());
    } else if (dark && !isOurs_ && !toolkitKnowsWhatIsPreferred() && !hasColoursOfTheDesktop()) {
        isOurs_ = true;
        QApplication::setPalette(darkPalette());
    }
}

} // namespace vantoro
