// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGui/QFont>

namespace vantoro {

// Fonts by purpose, derived from the user's font so that they scale with it.

QFont titleFont(QFont base);
QFont headlineFont(QFont base);
QFont captionFont(const QFont& base);
/// Digits of equal width, so that a running counter does not jitter.
QFont digitsFont(const QFont& base);

} // namespace vantoro
