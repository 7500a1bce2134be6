// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/status_text.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include "app/remote/program_choice.h"
#include "app/remote/remote_control.h"
#include "control/elapsed_time.h"
#include "control/transitions.h"
#include "l10n/l10n.h"
#include "l10n/texts/command_texts.h"
#include "platform/desktop/opening/file_uri.h"

namespace vantoro {

namespace {

using Case = RecordingState::Case;

RecordingState::Case stateOf(const std::string& word) {
    constexpr std::array states = {Case::idle,       Case::preparing, Case::recording,
                                   Case::processing, Case::completed, Case::failed};
    const auto* const found = std::ranges::find(
        states, word, [](RecordingState::Case state) { return controlWord(state); });
    return found == states.end() ? Case::idle : *found;
}

std::string pathOf(const std::string& uri) {
    return desktop::fileOfURI(uri).value_or(std::filesystem::path()).string();
}

std::string detail(RecordingState::Case state, const desktop::ControlStatus& status) {
    switch (state) {
    case Case::recording:
        return formattedElapsedTime(status.elapsedSeconds);
    case Case::processing:
        return std::to_string(std::clamp(std::lround(status.savingProgress * 100), 0L, 100L)) +
               " %";
    case Case::completed:
        return pathOf(status.lastRecording);
    default:
        return "";
    }
}

std::string lineOf(const desktop::ControlStatus& status, AppLanguage language) {
    const auto state = stateOf(status.state);
    auto line = L10n::text(statusKey(state), language);
    for (const auto& part : {detail(state, status), status.message}) {
        line += part.empty() ? part : " " + part;
    }
    std::ranges::replace(line, '\n', ' ');
    return line;
}

/// Null for an empty text.
QJsonValue textOrNull(const std::string& text) {
    return text.empty() ? QJsonValue() : QJsonValue(QString::fromStdString(text));
}

QJsonObject sourceObject(const desktop::ControlSource& source) {
    return {{"on", source.isOn},
            {"level", std::round(source.level * 1000) / 1000},
            {"condition", QString::fromStdString(source.condition)}};
}

void addDetails(QJsonObject& object, const desktop::ControlStatus& status) {
    auto microphone = sourceObject(status.microphone);
    microphone["id"] = textOrNull(status.microphoneID);
    object["elapsedSeconds"] = static_cast<qint64>(status.elapsedSeconds);
    object["savingProgress"] = std::round(status.savingProgress * 1000) / 1000;
    object["sources"] =
        QJsonObject{{"systemAudio", sourceObject(status.systemAudio)}, {"microphone", microphone}};
    object["folder"] = textOrNull(pathOf(status.folder));
    object["lastRecording"] = textOrNull(pathOf(status.lastRecording));
    object["message"] = textOrNull(status.message);
}

} // namespace

std::string statusLine(const std::vector<desktop::RunningProgram>& programs, AppLanguage language) {
    if (const auto* const program = chosenOf(programs)) {
        return lineOf(*program->status, language);
    }
    return (programs.empty() ? CommandText::notRunning : CommandText::programSilent).in(language);
}

std::string statusObject(const std::vector<desktop::RunningProgram>& programs,
                         AppLanguage language) {
    const auto* const program = chosenOf(programs);
    const std::string state = program != nullptr ? program->status->state
                              : programs.empty() ? "notRunning"
                                                 : "notAnswering";
    const auto word = QString::fromStdString(state);
    QJsonObject object{{"state", word},
                       {"class", word},
                       {"text", QString::fromStdString(statusLine(programs, language))}};
    if (program != nullptr) {
        addDetails(object, *program->status);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace vantoro
