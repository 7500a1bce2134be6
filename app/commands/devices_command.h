// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include "app/commands/json_line.h"
#include "engine/recording_types.h"

namespace vantoro {

/// One line per microphone: "* " before the default one, two spaces before the others, then the
/// identifier, a tab and the name.
inline std::string devicesText(const std::vector<AudioInputDevice>& microphones,
                               const std::optional<std::string>& defaultID) {
    std::string text;
    for (const auto& [id, name] : microphones) {
        text.append(id == defaultID ? "* " : "  ").append(id).append("\t").append(name) += "\n";
    }
    return text;
}

/// The same as a JSON array of objects, one line.
inline std::string devicesJson(const std::vector<AudioInputDevice>& microphones,
                               const std::optional<std::string>& defaultID) {
    QJsonArray list;
    for (const auto& [id, name] : microphones) {
        list.append(QJsonObject{{"id", QString::fromStdString(id)},
                                {"name", QString::fromStdString(name)},
                                {"default", id == defaultID}});
    }
    return jsonLine(QJsonDocument(list));
}

} // namespace vantoro
