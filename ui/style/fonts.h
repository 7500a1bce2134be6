// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QFont>

namespace vantoro {

// Fonts by their purpose, from the one that the user reads everything in: they grow with it.

QFont titleFont(QFont base);
QFont headlineFont(QFont base);
QFont captionFont(const QFont& base);
/// Digits that do not move while they count.
QFont digitsFont(const QFont& base);

} // namespace vantoro
