// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/command_line.h"

#include <cmath>

#include <QCommandLineParser>

namespace vantoro {

namespace {

const QString helpText = QStringLiteral(R"(Usage: vantoro [COMMAND [OPTIONS]]

Records what the computer plays together with the microphone into one M4A file. Without a command it
opens its window.

Commands:
  record     Record until Ctrl+C, then print the place of the final file.
  devices    List the microphones: "*" marks the default; identifier, tab, name.
  recover    Finish recordings that were interrupted, and print the final files' places.
  doctor     Say what recording finds on this machine, and what to do about what is wrong.

Options of record:
  --seconds N               Stop after N seconds.
  --folder DIR              Save into this folder; it is made when it is missing.
  --no-system-audio         Leave out what the computer plays.
  --no-microphone           Leave out the microphone.
  --microphone ID           Record this microphone in place of the default one.
  --system-volume G         Gain of the computer's sound, 1 for unchanged (0.9).
  --microphone-volume G     Gain of the microphone, 1 for unchanged (1).
  --language zh-Hans|en     Language of this run's messages.

Option of recover:
  --folder DIR              Look in this folder.

Option of doctor:
  --language zh-Hans|en     Language of the report.

Options:
  -h, --help                Print this help.
  -v, --version             Print the version.

Exit status: 0 saved, 1 failed, 2 wrong usage. Of doctor: 0 nothing is wrong, 1 something is.
Of recover: 3 saved, but for a part that is damaged.
)");

const QString seconds = QStringLiteral("seconds");
const QString folder = QStringLiteral("folder");
const QString noSystemAudio = QStringLiteral("no-system-audio");
const QString noMicrophone = QStringLiteral("no-microphone");
const QString microphone = QStringLiteral("microphone");
const QString systemVolume = QStringLiteral("system-volume");
const QString microphoneVolume = QStringLiteral("microphone-volume");
const QString language = QStringLiteral("language");

/// Ends the reading of a command line that makes no sense.
struct BadUsage {
    QString text;
};

std::optional<double> number(const QCommandLineParser& parser, const QString& option,
                             bool (*isAllowed)(double), const QString& rule) {
    if (!parser.isSet(option)) {
        return std::nullopt;
    }
    bool isNumber = false;
    const double value = parser.value(option).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value) || !isAllowed(value)) {
        throw BadUsage{
            QStringLiteral("--%1 takes %2, not \"%3\".").arg(option, rule, parser.value(option))};
    }
    return value;
}

std::optional<float> gain(const QCommandLineParser& parser, const QString& option) {
    const auto isGain = [](double value) {
        return value >= 0 && std::isfinite(static_cast<float>(value));
    };
    const auto value = number(parser, option, isGain, QStringLiteral("a number that is 0 or more"));
    return value ? std::optional(static_cast<float>(*value)) : std::nullopt;
}

void refuseFurtherWords(const QCommandLineParser& parser) {
    if (const auto words = parser.positionalArguments(); !words.isEmpty()) {
        throw BadUsage{QStringLiteral("\"%1\" is one word too many.").arg(words.first())};
    }
}

void parse(QCommandLineParser& parser, const QStringList& arguments) {
    // The parser expects the program's name in front.
    if (!parser.parse(QStringList(QStringLiteral("vantoro")) + arguments)) {
        throw BadUsage{parser.errorText()};
    }
    refuseFurtherWords(parser);
}

std::optional<std::filesystem::path> folderOf(const QCommandLineParser& parser) {
    if (!parser.isSet(folder)) {
        return std::nullopt;
    }
    if (parser.value(folder).isEmpty()) {
        throw BadUsage{QStringLiteral("--folder takes the name of a folder.")};
    }
    return parser.value(folder).toStdString();
}

std::optional<AppLanguage> languageOption(const QCommandLineParser& parser) {
    if (!parser.isSet(language)) {
        return std::nullopt;
    }
    const auto chosen = languageOf(parser.value(language).toStdString());
    if (!chosen) {
        throw BadUsage{QStringLiteral("--language takes zh-Hans or en, not \"%1\".")
                           .arg(parser.value(language))};
    }
    return chosen;
}

RecoverCommand parseRecover(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOption({folder, QString(), QStringLiteral("value")});
    parse(parser, arguments);
    return {folderOf(parser)};
}

DoctorCommand parseDoctor(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOption({language, QString(), QStringLiteral("value")});
    parse(parser, arguments);
    return {languageOption(parser)};
}

RecordCommand parseRecord(const QStringList& arguments) {
    QCommandLineParser parser;
    for (const QString& withValue :
         {seconds, folder, microphone, systemVolume, microphoneVolume, language}) {
        parser.addOption({withValue, QString(), QStringLiteral("value")});
    }
    parser.addOption(QCommandLineOption(noSystemAudio));
    parser.addOption(QCommandLineOption(noMicrophone));
    parse(parser, arguments);

    RecordCommand command;
    command.seconds = number(
        parser, seconds, [](double value) { return value > 0; },
        QStringLiteral("a number above 0"));
    command.folder = folderOf(parser);
    command.systemAudio = !parser.isSet(noSystemAudio);
    command.microphone = !parser.isSet(noMicrophone);
    if (parser.isSet(microphone)) {
        command.microphoneID = parser.value(microphone).toStdString();
    }
    command.systemVolume = gain(parser, systemVolume).value_or(command.systemVolume);
    command.microphoneVolume = gain(parser, microphoneVolume).value_or(command.microphoneVolume);
    command.language = languageOption(parser);
    return command;
}

Command parseOrThrow(const QStringList& arguments) {
    if (arguments.contains(QStringLiteral("--help")) || arguments.contains(QStringLiteral("-h"))) {
        return PrintCommand{helpText.toStdString()};
    }
    const QString first = arguments.value(0);
    const QStringList others = arguments.mid(1);
    if (first == QStringLiteral("record")) {
        return parseRecord(others);
    }
    if (first == QStringLiteral("recover")) {
        return parseRecover(others);
    }
    if (first == QStringLiteral("doctor")) {
        return parseDoctor(others);
    }
    QCommandLineParser parser;
    if (first == QStringLiteral("devices")) {
        parse(parser, others);
        return DevicesCommand{};
    }
    if (first == QStringLiteral("--version") || first == QStringLiteral("-v")) {
        parse(parser, others);
        return PrintCommand{"vantoro " VANTORO_VERSION "\n"};
    }
    if (first.isEmpty()) {
        throw BadUsage{QStringLiteral("What shall be done?")};
    }
    throw BadUsage{QStringLiteral("\"%1\" is not a command.").arg(first)};
}

} // namespace

Command parseCommandLine(const QStringList& arguments) {
    try {
        return parseOrThrow(arguments);
    } catch (const BadUsage& bad) {
        return UsageError{bad.text.toStdString() + " See vantoro --help."};
    }
}

} // namespace vantoro
