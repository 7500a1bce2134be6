// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtCore/QString>
#include <QtGui/QKeySequence>

namespace vantoro {

// The window's shortcuts. Explicit keys: a desktop's standard keys may be equal for two of these,
// or undefined.
inline constexpr QKeyCombination recordKeys = Qt::CTRL | Qt::Key_R;
inline constexpr QKeyCombination refreshKeys(Qt::Key_F5);
inline constexpr QKeyCombination menuKeys(Qt::Key_F10);
inline constexpr QKeyCombination closeKeys = Qt::CTRL | Qt::Key_W;
inline constexpr QKeyCombination quitKeys = Qt::CTRL | Qt::Key_Q;

/// For a tool tip.
inline QString withShortcut(const QString& text, QKeyCombination keys) {
    return text + QStringLiteral(" (") + QKeySequence(keys).toString(QKeySequence::NativeText) +
           QLatin1Char(')');
}

/// A menu's text with the letter that picks it marked: in the text, or else after it in brackets,
/// as is usual in Chinese.
inline QString withAccessKey(const QString& text, QChar letter) {
    const auto at = text.indexOf(letter, 0, Qt::CaseInsensitive);
    return at < 0 ? text + QStringLiteral("(&") + letter + QLatin1Char(')')
                  : QString(text).insert(at, QLatin1Char('&'));
}

} // namespace vantoro
