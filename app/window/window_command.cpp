// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/window_command.h"

#include <chrono>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <utility>

#include <QtCore/QMetaObject>
#include <QtWidgets/QApplication>

#include "app/platform/display.h"
#include "app/platform/recording_platform.h"
#include "app/platform/silent_bus_messages.h"
#include "app/remote/remote_control.h"
#include "app/window/network_module.h"
#include "app/window/vantoro_app.h"
#include "l10n/settings_file.h"
#include "l10n/texts/command_texts.h"
#include "platform/desktop/appearance/dark_preference.h"
#include "platform/desktop/bus/silent_buses.h"
#include "platform/desktop/font_configuration.h"
#include "platform/desktop/instance/application_instance.h"
#include "platform/desktop/notifications/desktop_notifications.h"
#include "platform/desktop/permission/microphone_access.h"
#include "platform/desktop/permission/sandbox.h"
#include "platform/desktop/status_area/status_notifier_area.h"
#include "platform/desktop/task_bar/launcher_entry.h"
#include "ui/status_area/substituted_status_area.h"
#include "ui/status_area/tray_icon_area.h"
#include "ui/style/application_style.h"
#include "ui/style/dark_colours.h"

namespace vantoro {

namespace {

using namespace std::chrono_literals;
using desktop::ApplicationInstance;

// A bus that hangs must not delay the window, nor another window of the program.
constexpr auto busPatience = 1s;
constexpr auto firstInstancePatience = 10s;
// A save that hangs must not block the end of the session.
constexpr auto sessionEndPatience = 60s;

bool isSandboxed() {
    return desktop::sandboxedApplicationID(desktop::standardSandboxDescription).has_value();
}

/// Loads the network's part of the program on first use.
AskForRecord askOverLoadedNetwork() {
    return [ask = AskForRecord()](const QUrl& location, std::chrono::milliseconds limit,
                                  std::function<void(RecordBody)> done) mutable {
        if (!ask) {
            ask = static_cast<const NetworkModule&>(
                      loadModule(moduleBesideTheProgram("vantoro-network.so"), networkModuleName))
                      .make();
        }
        return ask(location, limit, std::move(done));
    };
}

/// All parts of a program with a window.
class WindowRun {
public:
    WindowRun(const std::string& sessionBus, ApplicationInstance& instance, Ending& ending)
        : notifierArea_(sessionBus),
          notifications_(sessionBus, isSandboxed()),
          launcherEntry_(sessionBus),
          app_(platform_.makeRecorder(),
               platform_.forControl(preferences_, [&ending] { ending.progressed(); }),
               {.statusArea = statusArea_,
                .notifications = notifications_,
                .taskBarEntry = launcherEntry_,
                .desktops = qgetenv("XDG_CURRENT_DESKTOP").toStdString(),
                .version = VANTORO_VERSION,
                .askForRecord = askOverLoadedNetwork(),
                .launched = [this] { platform_.startTasks(); },
                .progressed =
                    [this, &ending](RecordingState::Case state, const auto& folder) {
                        ending.progressed({.state = state,
                                           .folder = folder,
                                           .language = L10n(preferences_).language()});
                    },
                .quits = [&ending] { ending.userQuits(); },
                .stays = [&ending] { ending.userStays(); },
                .end = [] { QApplication::exit(); }}),
          remoteControl_(
              app_.recording(), instance.control(),
              [this](const auto& token) { app_.startRecording(token); },
              [this](const auto& token) { app_.stopRecording(token); }),
          endingHandler_(ending, [this] { quitOnMainThread(); }) {
        instance.setRequested([this](const auto& request) { carryOut(request); });
        QObject::connect(qApp, &QGuiApplication::commitDataRequest, &app_,
                         [this] { app_.saveBeforeSessionEnd(sessionEndPatience); });
    }

private:
    void quitOnMainThread() {
        QMetaObject::invokeMethod(
            &app_, [this] { app_.quit(VantoroApp::IfNotSaved::end); }, Qt::QueuedConnection);
    }

    void carryOut(const desktop::ApplicationRequest& request) {
        using enum desktop::ApplicationAction;
        if (!request.action) {
            app_.activate(request.activationToken);
        } else if (*request.action == startRecording) {
            app_.startRecording(request.activationToken);
        } else {
            app_.stopRecording(request.activationToken);
        }
    }

    SettingsFile preferences_;
    // Searching for devices and old recordings would slow down the window's start.
    RecordingPlatform platform_{RecordingPlatform::Meters::shown, QtScheduler::TaskStart::deferred};
    desktop::StatusNotifierArea notifierArea_;
    TrayIconArea trayIconArea_;
    SubstitutedStatusArea statusArea_{notifierArea_, trayIconArea_};
    desktop::DesktopNotifications notifications_;
    desktop::LauncherEntry launcherEntry_;
    VantoroApp app_;
    RemoteControl remoteControl_;
    Ending::Handler endingHandler_;
};

/// Opens the window, or has the program that is running already show its own.
class WindowStart {
public:
    WindowStart(Ending& ending, std::string activationToken, std::jthread fonts)
        : ending_(ending), token_(std::move(activationToken)), fonts_(std::move(fonts)) {
        findRole();
    }

    /// Runs until the program ends; returns the exit status. Throws if the window cannot be opened.
    int run() {
        const int status = QApplication::exec();
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        ending_.concluded(status);
        instance_.reset(); // so that a new start need not wait for the rest of this shutdown
        return status;
    }

private:
    void findRole() {
        instance_ = std::make_unique<ApplicationInstance>(sessionBus_);
        instance_->whenRoleIsKnown(busPatience, [this](ApplicationInstance::Role role) {
            if (role == ApplicationInstance::Role::another) {
                activateFirst();
            } else {
                openWindow();
            }
        });
    }

    void activateFirst() {
        instance_->activateFirst(token_, firstInstancePatience, [this](auto answer) {
            using enum ApplicationInstance::FirstAnswer;
            if (answer == hasEnded) { // as when the user quits it and starts it again at once
                findRole();
                return;
            }
            if (answer == none) {
                std::cerr << CommandText::firstProgramSilent.in(usersLanguage()) << "\n";
            }
            QApplication::exit(answer == windowShown ? 0 : 1);
        });
    }

    void openWindow() {
        if (fonts_.joinable()) {
            fonts_.join(); // or the toolkit would load the configuration a second time meanwhile
        }
        try {
            window_ = std::make_unique<WindowRun>(sessionBus_, *instance_, ending_);
        } catch (...) { // the event loop does not support exceptions
            failure_ = std::current_exception();
            QApplication::exit(1);
        }
    }

    Ending& ending_;
    std::string token_;
    std::jthread fonts_;
    std::string sessionBus_ = desktop::standardBusAddresses().session;
    DarkColours colours_;
    // Asked before the window is built, which need not change its colours if the answer comes soon.
    const desktop::DarkPreference darkness_{sessionBus_,
                                            [this](bool isDark) { colours_.prefer(isDark); }};
    std::unique_ptr<ApplicationInstance> instance_;
    std::unique_ptr<WindowRun> window_;
    std::exception_ptr failure_;
};

} // namespace

int runWindowCommand(int& argc, char** argv, StopSignals& signals) {
    if (!hasDisplay()) {
        std::cerr << CommandText::desktopMissing.in(usersLanguage()) << "\n";
        return 2;
    }
    // First of all: it changes the environment, which threads and the toolkit read.
    const auto silent =
        desktop::leaveOutSilentBuses(desktop::BusUsers::soundAndWindow, signals.descriptor());
    std::cerr << silentBusMessages(silent, usersLanguage());
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar, silent.menuRegistrar);
    Ending ending(signals);
    auto fonts = desktop::readFontConfigurationAhead();
    auto token = desktop::activationTokenOfThisStart();
    const QApplication application(argc, argv);
    QApplication::setStyle(new ApplicationStyle);
    QApplication::setApplicationName("Vantoro");
    QApplication::setDesktopFileName(desktop::applicationID);
    QApplication::setQuitOnLastWindowClosed(false);
    return WindowStart(ending, std::move(token), std::move(fonts)).run();
}

} // namespace vantoro
