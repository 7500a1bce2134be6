// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include <QtCore/QJsonDocument>

namespace vantoro {

/// Compact, UTF-8, with the line's end.
inline std::string jsonLine(const QJsonDocument& document) {
    return document.toJson(QJsonDocument::Compact).toStdString() + "\n";
}

} // namespace vantoro
