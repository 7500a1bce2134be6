// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/desktop_opener.h"

#include <algorithm>
#include <limits>
#include <ranges>
#include <system_error>
#include <utility>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QtGlobal>

#include "platform/desktop/bus/silent_buses.h"
#include "platform/desktop/opening/file_uri.h"
#include "platform/desktop/opening/settings_pages.h"
#include "platform/desktop/permission/sandbox.h"

namespace vantoro::desktop {

namespace {

constexpr std::chrono::milliseconds limitWithoutABus = std::chrono::seconds(2);

/// Here rather than in the caller, because detecting a sandbox reads the disk.
Opening openingIn(const OpenerSurroundings& surroundings, std::stop_token stop) {
    const bool isSilent =
        findSilentBuses({.addresses = {.system = {}, .session = surroundings.sessionBus},
                         .accessibility = std::nullopt})
            .session;
    // Opening without the bus is quick, unless GIO tries that bus on its own.
    const auto limit =
        isSilent ? std::min(surroundings.limit, limitWithoutABus) : surroundings.limit;
    return {.sessionBus = isSilent ? std::string() : surroundings.sessionBus,
            .sandboxed = sandboxedApplicationID(surroundings.sandboxDescription).has_value(),
            .patience = {.limit = limit, .stop = std::move(stop)}};
}

/// Starts a program that outlives this one, is not its child, and has empty standard input. False
/// if it is not in the search path, or cannot be started.
bool startDetached(const CommandLine& command, const std::string& searchPath) {
    const auto folders = QString::fromStdString(searchPath).split(':', Qt::SkipEmptyParts);
    // If given no folders, Qt would search those of the environment.
    const auto program =
        folders.isEmpty()
            ? QString()
            : QStandardPaths::findExecutable(QString::fromStdString(command.front()), folders);
    if (program.isEmpty()) {
        return false;
    }
    QStringList arguments;
    for (const auto& argument : command | std::views::drop(1)) {
        arguments << QString::fromStdString(argument);
    }
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    return process.startDetached();
}

/// The URL of the installed help page, or empty.
std::string installedHelpPage() {
    const auto page =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation, "vantoro/help/privacy.html");
    return page.isEmpty() ? std::string() : fileURI(page.toStdString());
}

bool isEntryInstalled(const char* name) {
    return !QStandardPaths::locate(QStandardPaths::ApplicationsLocation, name).isEmpty();
}

} // namespace

DesktopOpener::DesktopOpener(OpenerSurroundings surroundings)
    : surroundings_(std::move(surroundings)) {
    threads_.setMaxThreadCount(std::numeric_limits<int>::max()); // no request waits for a thread
}

DesktopOpener::~DesktopOpener() {
    stop_.request_stop();
    threads_.waitForDone();
}

void DesktopOpener::start(const std::string& what,
                          std::function<bool(const MakeOpening& opening)> work) {
    threads_.start(
        [what, work = std::move(work), surroundings = surroundings_, stop = stop_.get_token()] {
            const auto opening = [&] { return openingIn(surroundings, stop); };
            if (!stop.stop_requested() && !work(opening) && !stop.stop_requested()) {
                qWarning("Cannot open %s", what.c_str());
            }
        });
}

void DesktopOpener::open(const std::filesystem::path& file) {
    start(file, [file](const MakeOpening& opening) { return opening().file(file); });
}

void DesktopOpener::openFolder(const std::filesystem::path& folder) {
    start(folder, [folder](const MakeOpening& opening) {
        // If this fails, showing the folder fails too and is reported.
        std::error_code ignored;
        std::filesystem::create_directories(folder, ignored);
        return opening().folder(folder);
    });
}

void DesktopOpener::reveal(const std::filesystem::path& file) {
    start(file, [file](const MakeOpening& opening) { return opening().reveal(file); });
}

void DesktopOpener::openPage(const std::string& address) {
    start(address, [address](const MakeOpening& opening) { return opening().address(address); });
}

void DesktopOpener::openPrivacySettings(const std::string& anchor) {
    const auto pages = privacySettingsPages(surroundings_.desktops, anchor, isEntryInstalled);
    if (pages.empty()) {
        return;
    }
    start("the settings " + anchor,
          [pages, surroundings = surroundings_](const MakeOpening& opening) {
              for (const auto& page : pages) {
                  if (startDetached(page, surroundings.searchPath)) {
                      return true;
                  }
              }
              const auto help =
                  surroundings.helpPage.empty() ? installedHelpPage() : surroundings.helpPage;
              return !help.empty() && opening().address(help);
          });
}

} // namespace vantoro::desktop
