// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>
#include <vector>

#include <QtGui/QPalette>

namespace vantoro::testing {

/// The desktop's colours.
struct Light {
    std::string name;
    QPalette palette;
};

/// Light and dark, and the same of high contrast.
inline std::vector<Light> lights() {
    QPalette contrast(Qt::white, Qt::black, Qt::white, Qt::darkGray, Qt::gray, Qt::white, Qt::white,
                      Qt::black, Qt::black);
    contrast.setColor(QPalette::Highlight, Qt::yellow);
    contrast.setColor(QPalette::HighlightedText, Qt::black);
    QPalette lightContrast(Qt::black, Qt::white, Qt::white, Qt::darkGray, Qt::gray, Qt::black,
                           Qt::black, Qt::white, Qt::white);
    lightContrast.setColor(QPalette::Highlight, QColor(0x0000c0));
    lightContrast.setColor(QPalette::HighlightedText, Qt::white);
    return {{"light", QPalette(QColor(0xefefef))},
            {"dark", QPalette(QColor(0x3a3a3c), QColor(0x242426))},
            {"contrast", contrast},
            {"lightContrast", lightContrast}};
}

} // namespace vantoro::testing
