// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/command_line.h"

#include <cmath>
#include <map>
#include <string_view>
#include <vector>

#include "app/commands/options.h"
#include "l10n/texts/bilingual_text.h"

namespace vantoro {

namespace {

/// UTF-8. "%1" and "%2" stand for words of the command line.
struct Message {
    std::string_view english;
    std::string_view chinese;
};

constexpr Message unknownCommand{"Unknown command \"%1\".", "未知命令“%1”。"};
constexpr Message unknownOption{"Unknown option \"%1\".", "未知选项“%1”。"};
constexpr Message unexpectedArgument{"Unexpected argument \"%1\".", "多余的参数“%1”。"};
constexpr Message missingValue{"--%1 needs a value.", "--%1 需要一个值。"};
constexpr Message unexpectedValue{"--%1 takes no value.", "--%1 不能带值。"};
constexpr Message notSeconds{"--%1 needs a number greater than 0, not \"%2\".",
                             "--%1 的值必须是大于 0 的数，不能是“%2”。"};
constexpr Message notGain{"--%1 needs a number that is 0 or greater, not \"%2\".",
                          "--%1 的值必须是不小于 0 的数，不能是“%2”。"};
constexpr Message notFolder{"--%1 needs the name of a folder.", "--%1 需要文件夹的名称。"};
constexpr Message notLanguage{"--%1 needs zh-Hans or en, not \"%2\".",
                              "--%1 的值必须是 zh-Hans 或 en，不能是“%2”。"};

/// Thrown to stop parsing an invalid command line.
struct BadUsage {
    Message message;
    QString word;
    QString value = {};

    std::string text(AppLanguage language) const {
        const std::vector words{word.toStdString(), value.toStdString()};
        return language == AppLanguage::english
                   ? filled(message.english, words) + " See vantoro --help."
                   : filled(message.chinese, words) + "请参阅 vantoro --help。";
    }
};

/// The options on one command line. If one is given twice, the last value counts.
class GivenOptions {
public:
    /// Throws `BadUsage` if a word is not an option of the command or its value.
    GivenOptions(const QString& command, QStringList words) {
        while (!words.isEmpty()) {
            const QString word = words.takeFirst();
            if (!word.startsWith('-')) {
                throw BadUsage{unexpectedArgument, word};
            }
            const CommandOption option = find(command, word.section('=', 0, 0));
            if (word.contains('=') && !option.takesValue) {
                throw BadUsage{unexpectedValue, option.name};
            }
            if (word.contains('=')) {
                words.prepend(word.section('=', 1));
            }
            if (option.takesValue && words.isEmpty()) {
                throw BadUsage{missingValue, option.name};
            }
            values_[option.name] = option.takesValue ? words.takeFirst() : QString();
        }
    }

    /// Empty for an option that takes none.
    std::optional<QString> value(const QString& name) const {
        const auto found = values_.find(name);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }

private:
    static CommandOption find(const QString& command, const QString& word) {
        for (const auto& option : commandOptions()) {
            if (command == option.command && word == QString("--") + option.name) {
                return option;
            }
        }
        throw BadUsage{unknownOption, word};
    }

    std::map<QString, QString> values_;
};

std::optional<double> number(const GivenOptions& options, const QString& name,
                             bool (*isAllowed)(double), const Message& fault) {
    const auto given = options.value(name);
    if (!given) {
        return std::nullopt;
    }
    bool isNumber = false;
    const double value = given->toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value) || !isAllowed(value)) {
        throw BadUsage{fault, name, *given};
    }
    return value;
}

std::optional<double> seconds(const GivenOptions& options, const QString& name) {
    return number(options, name, [](double value) { return value > 0; }, notSeconds);
}

std::optional<float> gain(const GivenOptions& options, const QString& name) {
    const auto isGain = [](double value) {
        return value >= 0 && std::isfinite(static_cast<float>(value));
    };
    const auto value = number(options, name, isGain, notGain);
    return value.transform([](double number) { return static_cast<float>(number); });
}

std::optional<std::filesystem::path> folderOf(const GivenOptions& options) {
    const auto given = options.value("folder");
    if (given && given->isEmpty()) {
        throw BadUsage{notFolder, "folder"};
    }
    return given ? std::optional<std::filesystem::path>(given->toStdString()) : std::nullopt;
}

std::optional<AppLanguage> languageOption(const GivenOptions& options) {
    const auto given = options.value("language");
    const auto chosen = given ? languageOf(given->toStdString()) : std::nullopt;
    if (given && !chosen) {
        throw BadUsage{notLanguage, "language", *given};
    }
    return chosen;
}

RecordCommand recordCommand(const GivenOptions& options) {
    RecordCommand command;
    command.seconds = seconds(options, "seconds");
    command.silence = seconds(options, "until-silence");
    command.folder = folderOf(options);
    command.systemAudio = !options.value("no-system-audio");
    command.microphone = !options.value("no-microphone");
    command.microphoneID = options.value("microphone").transform(&QString::toStdString);
    command.systemVolume = gain(options, "system-volume").value_or(command.systemVolume);
    command.microphoneVolume =
        gain(options, "microphone-volume").value_or(command.microphoneVolume);
    command.title = options.value("title").value_or(QString()).toStdString();
    command.tracks = options.value("tracks").has_value();
    command.language = languageOption(options);
    return command;
}

std::optional<RemoteCommand::Action> remoteAction(const QString& command) {
    using enum RemoteCommand::Action;
    if (command == "start") {
        return start;
    }
    if (command == "stop") {
        return stop;
    }
    if (command == "mark") {
        return mark;
    }
    return command == "toggle" ? std::optional(toggle) : std::nullopt;
}

/// The text of a mark comes first, unless it looks like an option.
RemoteCommand remoteCommand(RemoteCommand::Action action, const QString& name, QStringList words) {
    RemoteCommand command{.action = action, .language = {}};
    const bool hasText =
        action == RemoteCommand::Action::mark && !words.isEmpty() && !words.first().startsWith('-');
    if (hasText) {
        command.text = words.takeFirst().toStdString();
    }
    command.language = languageOption({name, words});
    return command;
}

Command parseOrThrow(const QStringList& arguments, AppLanguage ownLanguage) {
    if (arguments.contains("--help") || arguments.contains("-h")) {
        return PrintCommand{std::string(helpText(ownLanguage))};
    }
    const QString first = arguments.value(0);
    const QStringList others = arguments.mid(1);
    if (first == "record") {
        return recordCommand({first, others});
    }
    if (first == "devices") {
        const GivenOptions options(first, others);
        return DevicesCommand{options.value("json").has_value(), languageOption(options)};
    }
    if (first == "recover") {
        const GivenOptions options(first, others);
        return RecoverCommand{.folder = folderOf(options),
                              .tracks = options.value("tracks").has_value(),
                              .language = languageOption(options)};
    }
    if (first == "doctor") {
        const GivenOptions options(first, others);
        return DoctorCommand{options.value("json").has_value(), folderOf(options),
                             languageOption(options)};
    }
    if (const auto action = remoteAction(first)) {
        return remoteCommand(*action, first, others);
    }
    if (first == "status") {
        const GivenOptions options(first, others);
        return StatusCommand{.isJSON = options.value("json").has_value(),
                             .isFollowed = options.value("follow").has_value(),
                             .language = languageOption(options)};
    }
    if (first == "--version" || first == "-v") {
        const GivenOptions none({}, others);
        return PrintCommand{"vantoro " VANTORO_VERSION "\n"};
    }
    throw BadUsage{unknownCommand, first};
}

/// The language that `--language` selects, if any.
std::optional<AppLanguage> languageIn(const QStringList& arguments) {
    const auto words = arguments.join('=').split('=');
    const auto option = words.lastIndexOf("--language");
    return option < 0 ? std::nullopt : languageOf(words.value(option + 1).toStdString());
}

} // namespace

Command parseCommandLine(const QStringList& arguments, AppLanguage usersLanguage) {
    const auto chosen = languageIn(arguments).value_or(usersLanguage);
    try {
        return parseOrThrow(arguments, chosen);
    } catch (const BadUsage& bad) {
        return UsageError{bad.text(chosen)};
    }
}

} // namespace vantoro
