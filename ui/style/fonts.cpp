// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/style/fonts.h"

#include <QtGui/QFontDatabase>
#include <QtGui/QFontMetricsF>

namespace vantoro {

namespace {

QFont scaled(QFont font, double factor) {
    if (font.pointSizeF() > 0) {
        font.setPointSizeF(font.pointSizeF() * factor);
    } else {
        font.setPixelSize(static_cast<int>(font.pixelSize() * factor));
    }
    return font;
}

/// Measures only two digits, of which 1 is a narrow one: each is rendered, which delays the window.
bool hasDigitsOfEqualWidth(const QFont& font) {
    const QFontMetricsF metrics(font);
    return qFuzzyCompare(metrics.horizontalAdvance(QLatin1Char('1')),
                         metrics.horizontalAdvance(QLatin1Char('0')));
}

} // namespace

QFont titleFont(QFont base) {
    base = scaled(base, 18.0 / 13);
    base.setWeight(QFont::DemiBold);
    return base;
}

QFont headlineFont(QFont base) {
    base.setWeight(QFont::DemiBold);
    return base;
}

QFont captionFont(const QFont& base) {
    return scaled(base, 0.85);
}

QFont digitsFont(const QFont& base) {
    if (hasDigitsOfEqualWidth(base)) {
        return base;
    }
    auto font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (base.pointSizeF() > 0) {
        font.setPointSizeF(base.pointSizeF());
    } else {
        font.setPixelSize(base.pixelSize());
    }
    font.setWeight(base.weight());
    return font;
}

} // namespace vantoro
