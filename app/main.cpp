// SPDX-License-Identifier: GPL-3.0-or-later

#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <variant>

#include <QCoreApplication>

#include "app/commands/command_line.h"
#include "app/commands/devices_command.h"
#include "app/commands/doctor_command.h"
#include "app/commands/record_command.h"
#include "app/commands/recover_command.h"
#include "app/ending/ending.h"
#include "app/ending/stop_signals.h"
#include "app/platform/recording_platform.h"
#include "app/platform/silent_bus_messages.h"
#include "app/remote/recording_on_the_bus.h"
#include "app/remote/remote_command.h"
#include "app/remote/status_command.h"
#include "app/window/window_command.h"
#include "control/recording_folder.h"
#include "engine/failure.h"
#include "l10n/settings_file.h"
#include "l10n/texts/command_texts.h"
#include "l10n/texts/error_description.h"
#include "l10n/track_names.h"
#include "platform/desktop/bus/silent_buses.h"
#include "platform/desktop/opening/default_recording_folder.h"
#include "platform/desktop/realtime_services.h"
#include "platform/ffmpeg/loaded_toolkit.h"
#include "platform/journal/journal.h"
#include "platform/pipewire/bus_use.h"
#include "platform/pipewire/sound_server.h"
#include "platform/posix/allocation.h"
#include "platform/posix/locale.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"

namespace vantoro {

namespace {

/// Prints a result on standard output. False on a write error.
bool print(const std::string& text) {
    std::cout << text << std::flush;
    if (!std::cout) {
        std::cerr << CommandText::resultNotPrinted.in(usersLanguage()) << "\n";
    }
    return std::cout.good();
}

/// Runs one command and returns its exit status.
class Program {
public:
    explicit Program(StopSignals& signals) : signals_(signals) {}

    int operator()(const PrintCommand& command) const { return print(command.text) ? 0 : 1; }

    int operator()(const UsageError& error) const {
        std::cerr << error.text << "\n";
        return 2;
    }

    int operator()(const DevicesCommand& command) {
        language_ = command.language;
        leaveOutSilentBuses();
        const auto found = pipewire::SoundServer().find();
        if (found.microphones.empty() && !found.mayCapture) {
            throw Failure(FailureCode::serverUnreachable);
        }
        if (found.microphones.empty()) {
            std::cerr << CommandText::noMicrophone.in(language()) << "\n";
        }
        const auto format = command.json ? devicesJson : devicesText;
        return print(format(found.microphones, found.defaultMicrophone)) ? 0 : 1;
    }

    int operator()(const RecoverCommand& command) {
        Ending ending(signals_);
        posix::PosixFileSystem fileSystem;
        ffmpeg::LoadedToolkit mediaToolkit(fileSystem);
        const posix::SystemClock clock;
        journal::Journal log(journal::Journal::WithoutJournal::discard);
        const SettingsFile users;
        PreferencesForOneRun preferences(users);
        setLanguage(preferences, command.language);
        if (command.tracks) {
            preferences.set(Preference::keepTracks, "true");
        }
        return runRecoverCommand(command, recordingFolderOf(preferences), trackNames(preferences),
                                 {mediaToolkit, fileSystem, clock}, log, ending, L10n(preferences));
    }

    int operator()(const DoctorCommand& command) {
        language_ = command.language;
        const auto silent = leaveOutSilentBuses();
        const auto folder = command.folder ? std::filesystem::absolute(*command.folder)
                                           : recordingFolderOf(SettingsFile());
        return examine(folder, silent, [&](const DoctorFindings& findings) {
            const auto report = doctorReport(findings, language());
            const auto text = command.json ? doctorJson(report) : doctorText(report, language());
            return print(text) && isAllWell(report) ? 0 : 1;
        });
    }

    int operator()(const RemoteCommand& command) {
        language_ = command.language;
        return runRemoteCommand(command, language(), signals_.descriptor());
    }

    int operator()(const StatusCommand& command) {
        language_ = command.language;
        return runStatusCommand(command, language(), signals_.descriptor());
    }

    int operator()(const RecordCommand& command) {
        const auto silent = leaveOutSilentBuses();
        const SettingsFile users;
        std::cerr << silentBusMessages(silent, command.language.value_or(L10n(users).language()));
        Ending ending(signals_);
        PreferencesForOneRun preferences(users);
        setLanguage(preferences, command.language);
        if (command.folder) {
            preferences.set(Preference::outputDirectory,
                            std::filesystem::absolute(*command.folder).string());
        }
        if (command.tracks) {
            preferences.set(Preference::keepTracks, "true");
        }
        RecordRun run(command, ending, preferences);
        RecordingPlatform platform(RecordingPlatform::Meters::none);
        platform.setChosenMicrophone(command.microphoneID);
        RecordingViewModel model(
            platform.makeRecorder(),
            platform.forControl(preferences, [&ending] { ending.progressed(); }));
        const RecordingOnTheBus onTheBus(model);
        return run.run(model);
    }

    /// Of messages: the one given with the command, else the user's.
    AppLanguage language() const { return language_.value_or(usersLanguage()); }

private:
    void setLanguage(PreferencesForOneRun& preferences, std::optional<AppLanguage> language) {
        language_ = language;
        if (language) {
            preferences.set(Preference::appLanguage, std::string(rawValue(*language)));
        }
    }

    desktop::SilentBuses leaveOutSilentBuses() const {
        return desktop::leaveOutSilentBuses(desktop::BusUsers::soundAlone, signals_.descriptor());
    }

    static std::filesystem::path recordingFolderOf(const Preferences& preferences) {
        return recordingFolder(preferences.get(Preference::outputDirectory),
                               desktop::defaultRecordingFolder());
    }

    StopSignals& signals_;
    std::optional<AppLanguage> language_;
};

int runCommand(int& argc, char** argv, StopSignals& signals) {
    const QCoreApplication application(argc, argv);
    Program program(signals);
    try {
        return std::visit(program,
                          parseCommandLine(QCoreApplication::arguments().mid(1), usersLanguage()));
    } catch (const std::exception&) {
        std::cerr << errorDescription(std::current_exception(), program.language()) << "\n";
        return 1;
    }
}

} // namespace

} // namespace vantoro

int main(int argc, char** argv) {
    try {
        // Before any thread starts.
        vantoro::posix::keepMemorySmall();
        vantoro::posix::useUtf8();
        vantoro::StopSignals signals;
        vantoro::pipewire::useBusesIf(vantoro::desktop::realtimeServicesAnswerHere);
        if (argc <= 1) {
            return vantoro::runWindowCommand(argc, argv, signals);
        }
        return vantoro::runCommand(argc, argv, signals);
    } catch (const std::exception&) {
        std::cerr << vantoro::errorDescription(std::current_exception(), vantoro::usersLanguage())
                  << "\n";
        return 1;
    }
}
