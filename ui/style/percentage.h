// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QString>

namespace vantoro {

/// Truncated to whole percent: 0.999 is 99.
inline int percentage(double value) {
    return static_cast<int>(value * 100);
}

inline QString percentageText(double value) {
    return QString::number(percentage(value)) + QLatin1Char('%');
}

} // namespace vantoro
