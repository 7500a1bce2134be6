// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/remote_command.h"

#include <expected>
#include <iostream>
#include <vector>

#include <QtCore/QCoreApplication>
#include <QtCore/QProcess>

#include "app/platform/display.h"
#include "app/remote/program_choice.h"
#include "l10n/l10n.h"
#include "l10n/texts/command_texts.h"
#include "platform/desktop/bus/bus_addresses.h"
#include "platform/desktop/instance/application_instance.h"
#include "platform/desktop/opening/file_uri.h"

namespace vantoro {

namespace {

using desktop::NoAnswer;
using desktop::RunningProgram;

/// Starts the program with its window, which outlives this one.
bool launchProgram() {
    QProcess program;
    program.setProgram(QCoreApplication::applicationFilePath());
    // Whoever reads this command's output must not wait for the window's end.
    program.setStandardInputFile(QProcess::nullDevice());
    program.setStandardOutputFile(QProcess::nullDevice());
    program.setStandardErrorFile(QProcess::nullDevice());
    program.setWorkingDirectory("/");
    return program.startDetached();
}

class RemoteRun {
public:
    RemoteRun(AppLanguage language, int interruption)
        : language_(language), client_(desktop::standardBusAddresses().session, interruption) {}

    int run(const RemoteCommand& command) {
        const auto action = command.action;
        const auto programs = client_.programs();
        if (!programs) {
            return fail(errorText(programs.error(), language_));
        }
        const auto* const chosen = chosenOf(*programs);
        const auto use = chosen == nullptr ? ProgramUse::none : useOf(*chosen);
        const bool isRecording = use == ProgramUse::recording;
        if (isOneSilent(*programs) && !isRecording) {
            return fail(text(CommandText::programSilent)); // it may be the one that records
        }
        if (isOneSilent(*programs)) {
            say(text(CommandText::otherProgramSilent));
        }
        if (action == RemoteCommand::Action::start || (!isRecording && isToggle(action))) {
            return isRecording ? startAgain(*chosen) : start();
        }
        const bool isMark = action == RemoteCommand::Action::mark;
        if (use < (isMark ? ProgramUse::recording : ProgramUse::saving)) {
            return fail(
                text(programs->empty() ? CommandText::notRunning : CommandText::notRecording));
        }
        if (isMark) {
            return mark(*chosen, command.text);
        }
        return stop(*chosen);
    }

private:
    static desktop::ControlStatus statusOf(const RunningProgram& program) {
        return program.status.value_or(desktop::ControlStatus());
    }

    static bool isToggle(RemoteCommand::Action action) {
        return action == RemoteCommand::Action::toggle;
    }

    std::string text(const BilingualText& text) const { return text.in(language_); }

    static void say(const std::string& text) { std::cerr << text << "\n"; }

    static int fail(const std::string& text) {
        say(text);
        return 1;
    }

    /// One that is being started may still fail.
    int startAgain(const RunningProgram& program) {
        if (statusOf(program).state == "recording") {
            say(text(CommandText::alreadyRecording));
            return 0;
        }
        return report(client_.start(program.service, token_));
    }

    int start() {
        auto started = client_.start(desktop::applicationID, token_);
        if (!started && started.error().noAnswer == NoAnswer::notStarted) {
            if (!hasDisplay()) {
                return fail(text(CommandText::desktopMissing));
            }
            if (!launchProgram()) {
                return fail(errorText(NoAnswer::notStarted, language_));
            }
            if (const auto isThere = client_.awaitService(desktop::applicationID); !isThere) {
                return fail(errorText(isThere.error(), language_));
            }
            started = client_.start(desktop::applicationID, token_);
        }
        return report(started);
    }

    int mark(const RunningProgram& program, const std::string& words) {
        const auto number = client_.mark(program.service, words);
        if (!number) {
            return fail(messageOf(number.error()));
        }
        std::cout << *number << std::endl; // NOLINT(performance-avoid-endl): checked below
        return std::cout ? 0 : fail(text(CommandText::resultNotPrinted));
    }

    int report(const std::expected<void, desktop::CallFailure>& started) {
        return started ? 0 : fail(messageOf(started.error()));
    }

    int stop(const RunningProgram& program) {
        const auto saved = client_.stop(program.service, token_);
        if (!saved) {
            return fail(
                saved.error().noAnswer == NoAnswer::interrupted
                    ? CommandText::stopInterrupted.in(language_, {pathOf(statusOf(program).folder)})
                    : messageOf(saved.error()));
        }
        if (!saved->message.empty()) {
            say(saved->message);
        }
        const auto path = pathOf(saved->uri);
        std::cout << path << std::endl; // NOLINT(performance-avoid-endl): checked below
        if (!std::cout) {
            return fail(CommandText::recordingNotPrinted.in(language_, {path}));
        }
        return saved->isComplete ? 0 : 1;
    }

    std::string messageOf(const desktop::CallFailure& failure) const {
        if (failure.noAnswer) {
            return errorText(*failure.noAnswer, language_);
        }
        const auto& [error, told] = failure.told;
        if (error == desktop::savingError) {
            return text(CommandText::stillSaving);
        }
        if (error == desktop::notRecordingError) {
            return text(CommandText::notRecording);
        }
        if (error == desktop::fullError) {
            return text(CommandText::noMoreMarks);
        }
        if (error == desktop::noSourceError) {
            return L10n::text(L10n::Key::noAudioSource, language_);
        }
        return told;
    }

    static std::string pathOf(const std::string& uri) {
        return desktop::fileOfURI(uri).value_or(std::filesystem::path()).string();
    }

    AppLanguage language_;
    std::string token_ = desktop::activationTokenOfThisStart();
    desktop::ControlClient client_;
};

} // namespace

std::string errorText(NoAnswer reason, AppLanguage language) {
    const auto text = [&] {
        switch (reason) {
        case NoAnswer::noBus:
            return CommandText::sessionBusMissing;
        case NoAnswer::silentBus:
            return CommandText::sessionBusHangs;
        case NoAnswer::interrupted:
            return CommandText::commandInterrupted;
        case NoAnswer::silent:
            return CommandText::programSilent;
        case NoAnswer::gone:
            return CommandText::programEnded;
        case NoAnswer::notStarted:
            return CommandText::notRunning;
        case NoAnswer::late:
            break;
        }
        return CommandText::startedTooLate;
    }();
    return text.in(language);
}

int runRemoteCommand(const RemoteCommand& command, AppLanguage language, int interruption) {
    return RemoteRun(language, interruption).run(command);
}

} // namespace vantoro
