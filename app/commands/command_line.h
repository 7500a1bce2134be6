// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include <QStringList>

#include "l10n/app_language.h"

namespace vantoro {

struct RecordCommand {
    std::optional<double> seconds; ///< above 0; absent: until a signal
    std::optional<double> silence; ///< seconds that end the recording, above 0
    std::optional<std::filesystem::path> folder;
    bool systemAudio = true;
    bool microphone = true;
    std::optional<std::string> microphoneID;
    float systemVolume = 0.9F; ///< linear gains, 0 or more
    float microphoneVolume = 1.0F;
    std::string title;                   ///< empty: the file's name
    bool tracks = false;                 ///< keep them, whatever the user's preference
    std::optional<AppLanguage> language; ///< of the messages; absent: the user's

    friend bool operator==(const RecordCommand&, const RecordCommand&) = default;
};

struct DevicesCommand {
    bool json = false;
    std::optional<AppLanguage> language; ///< of the messages; absent: the user's

    friend bool operator==(const DevicesCommand&, const DevicesCommand&) = default;
};

struct RecoverCommand {
    std::optional<std::filesystem::path> folder;
    bool tracks = false;                 ///< as above
    std::optional<AppLanguage> language; ///< of the messages; absent: the user's

    friend bool operator==(const RecoverCommand&, const RecoverCommand&) = default;
};

struct DoctorCommand {
    bool json = false;
    std::optional<std::filesystem::path> folder; ///< to check; absent: that of the recordings
    std::optional<AppLanguage> language;         ///< of the report; absent: the user's

    friend bool operator==(const DoctorCommand&, const DoctorCommand&) = default;
};

/// Controls a running program; see `RemoteCommand::Action`.
struct RemoteCommand {
    enum class Action : std::uint8_t {
        start, ///< a recording, also in a program that has to be started first
        stop,  ///< and print the recording's path
        toggle,
        mark, ///< this moment of the recording
    };

    Action action = Action::start;
    std::string text = {};               ///< of a mark; empty for the usual one
    std::optional<AppLanguage> language; ///< of the messages; absent: the user's

    friend bool operator==(const RemoteCommand&, const RemoteCommand&) = default;
};

/// Print what a running program does.
struct StatusCommand {
    bool isJSON = false;
    bool isFollowed = false;             ///< print each change, until a signal
    std::optional<AppLanguage> language; ///< absent: the user's

    friend bool operator==(const StatusCommand&, const StatusCommand&) = default;
};

/// Print this text on standard output and exit.
struct PrintCommand {
    std::string text;

    friend bool operator==(const PrintCommand&, const PrintCommand&) = default;
};

/// The command line is invalid; `text` is one line that says why.
struct UsageError {
    std::string text;

    friend bool operator==(const UsageError&, const UsageError&) = default;
};

using Command = std::variant<RecordCommand, DevicesCommand, RecoverCommand, DoctorCommand,
                             RemoteCommand, StatusCommand, PrintCommand, UsageError>;

/// `arguments` exclude the program's name. Help and usage errors are in the language that
/// `--language` selects, else in `usersLanguage`.
Command parseCommandLine(const QStringList& arguments, AppLanguage usersLanguage);

} // namespace vantoro
