// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/vantoro_app.h"

#include <utility>

#include <QtCore/QEventLoop>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

namespace vantoro {

namespace {

using namespace std::chrono_literals;

// The limit for a window that never paints, because the session is locked or it starts minimised.
constexpr auto longestLaunch = 2s;

} // namespace

VantoroApp::VantoroApp(std::unique_ptr<Recorder> recorder, const ControlPlatform& platform,
                       WindowPlatform windowPlatform)
    : platform_(std::move(windowPlatform)),
      opener_(platform.opener),
      preferences_(platform.preferences),
      appDelegate_(
          {.statusArea = platform_.statusArea,
           .levels = platform.levels,
           .preferences = platform.preferences,
           .desktops = platform_.desktops,
           .showMainWindow = [this](const auto& token) { activate(token); },
           .carryOut = [this](auto command, const auto& token) { carryOut(command, token); }}),
      viewModel_(std::move(recorder), platform),
      languageSettings_(platform.preferences),
      updateChecker_(platform.preferences, platform_.version,
                     [&opener = platform.opener](const QUrl& page) {
                         opener.openPage(page.toString(QUrl::FullyEncoded).toStdString());
                     },
                     {.ask = platform_.askForRecord}),
      savingFirst_(viewModel_),
      window_(viewModel_, languageSettings_, updateChecker_, platform.preferences),
      remoteRecording_(viewModel_, [this](const auto& token) { activate(token); }) {
    AppDelegate::applicationWillFinishLaunching();
    followWindow();
    followRecording();
    window_.show();
    QTimer::singleShot(longestLaunch, this, &VantoroApp::endLaunch);
}

void VantoroApp::endLaunch() {
    if (!std::exchange(hasLaunched_, true)) {
        platform_.launched();
        appDelegate_.applicationDidFinishLaunching();
        startNotices();
    }
}

void VantoroApp::startNotices() {
    notices_ = std::make_unique<Notices>(
        Notices::Surroundings{.model = viewModel_,
                              .notifications = platform_.notifications,
                              .opener = opener_,
                              .preferences = preferences_,
                              .isWindowInFront = [this] { return isWindowInFront(); },
                              .showMainWindow = [this](const auto& token) { activate(token); }});
    connect(qApp, &QGuiApplication::applicationStateChanged, notices_.get(), [this] {
        if (isWindowInFront()) {
            notices_->windowCameToFront();
        }
    });
}

bool VantoroApp::isWindowInFront() const {
    return window_.isVisible() && !window_.isMinimized() && QApplication::activeWindow() != nullptr;
}

void VantoroApp::followWindow() {
    connect(&window_, &MainWindow::firstPainted, this, &VantoroApp::endLaunch,
            Qt::QueuedConnection);
    connect(&window_, &MainWindow::closeRequested, this, &VantoroApp::hideOrMinimise);
    connect(&window_, &MainWindow::quitRequested, this, [this] { quit(IfNotSaved::stay); });
    platform_.statusArea.setAvailabilityChanged([this] {
        if (!window_.isVisible()) {
            hideOrMinimise(); // the status area may be gone
        }
    });
}

void VantoroApp::followRecording() {
    const auto tell = [this] {
        const auto& values = viewModel_.values();
        platform_.progressed(values.state.which(), values.outputDirectory);
    };
    connect(&viewModel_, &RecordingProperties::propertyChanged, this,
            [this, tell](RecordingProperties::Property property) {
                using enum RecordingProperties::Property;
                if (property == state || property == outputDirectory) {
                    tell();
                }
                if (property == progress) {
                    showProgress();
                }
                if (property == state || property == elapsedSeconds ||
                    property == captureSystemAudio || property == captureMicrophone) {
                    showScene();
                }
            });
    connect(&languageSettings_, &LanguageSettings::languageChanged, this, &VantoroApp::showScene);
    tell();
    showScene();
}

void VantoroApp::showScene() {
    const auto& values = viewModel_.values();
    appDelegate_.setScene({.state = values.state.which(),
                           .canStart = viewModel_.canStart(),
                           .elapsedSeconds = values.elapsedSeconds});
}

void VantoroApp::showProgress() {
    const auto& progress = viewModel_.values().progress;
    platform_.taskBarEntry.setProgress(progress ? std::optional(progress->fraction) : std::nullopt);
}

void VantoroApp::carryOut(StatusAreaCommand command, const std::string& activationToken) {
    switch (command) {
    case StatusAreaCommand::showWindow:
        activate(activationToken);
        break;
    case StatusAreaCommand::startRecording:
        startRecording(activationToken);
        break;
    case StatusAreaCommand::stopRecording:
        stopRecording(activationToken);
        break;
    case StatusAreaCommand::quit:
        quit(IfNotSaved::stay);
        break;
    }
}

void VantoroApp::activate(const std::string& activationToken) {
    window_.bringToFront(activationToken);
    if (notices_) {
        notices_->windowCameToFront();
    }
}

void VantoroApp::startRecording(const std::string& activationToken) {
    remoteRecording_.start(activationToken);
}

void VantoroApp::stopRecording(const std::string& activationToken) {
    remoteRecording_.stop(activationToken);
}

void VantoroApp::hideOrMinimise() {
    if (platform_.statusArea.isAvailable() == true) {
        window_.hide();
    } else {
        window_.showMinimized();
    }
}

void VantoroApp::quit(IfNotSaved ifNotSaved) {
    if (ifNotSaved == IfNotSaved::stay) {
        platform_.quits();
    }
    savingFirst_.request([this, ifNotSaved](bool saved) {
        if (saved || ifNotSaved == IfNotSaved::end) {
            window_.hide(); // remaining work may take a moment to end
            platform_.end();
        } else {
            platform_.stays();
        }
    });
    if (savingFirst_.isUnderWay()) {
        activate({});
    }
}

void VantoroApp::saveBeforeSessionEnd(std::chrono::milliseconds patience) {
    QEventLoop loop;
    savingFirst_.request([waiting = QPointer(&loop)](bool /*saved*/) {
        if (waiting) {
            waiting->quit();
        }
    });
    if (savingFirst_.isUnderWay()) {
        QTimer::singleShot(patience, &loop, &QEventLoop::quit);
        loop.exec();
    }
}

} // namespace vantoro
