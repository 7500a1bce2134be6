// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/desktop_opener.h"

#include <algorithm>
#include <limits>
#include <system_error>
#include <utility>

#include <QtCore/QStandardPaths>
#include <QtCore/QtGlobal>

#include "platform/desktop/bus/bounded_call.h"
#include "platform/desktop/bus/silent_buses.h"
#include "platform/desktop/opening/detached_program.h"
#include "platform/desktop/opening/file_uri.h"
#include "platform/desktop/opening/opening.h"
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
    return {isSilent ? std::string() : surroundings.sessionBus,
            sandboxedApplicationID(surroundings.sandboxDescription).has_value(),
            Patience{.limit = limit, .stop = std::move(stop)}};
}

/// The URL of the installed help page, or empty.
std::string installedHelpPage() {
    const auto page =
        QStandardPaths::locate(QStandardPaths::GenericDataLocation, "vantoro/help/privacy.html");
    return page.isEmpty() ? std::string() : fileURI(page.toStdString());
}

bool showHelp(const OpenerSurroundings& surroundings, const std::stop_token& stop) {
    const auto page = surroundings.helpPage.empty() ? installedHelpPage() : surroundings.helpPage;
    return !page.empty() && openingIn(surroundings, stop).address(page);
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

void DesktopOpener::start(const std::string& what, std::function<bool()> work) {
    threads_.start([what, work = std::move(work), stop = stop_.get_token()] {
        if (!stop.stop_requested() && !work() && !stop.stop_requested()) {
            qWarning("Cannot open %s", what.c_str());
        }
    });
}

void DesktopOpener::open(const std::filesystem::path& file) {
    start(file, [file, surroundings = surroundings_, stop = stop_.get_token()] {
        return openingIn(surroundings, stop).file(file);
    });
}

void DesktopOpener::openFolder(const std::filesystem::path& folder) {
    start(folder, [folder, surroundings = surroundings_, stop = stop_.get_token()] {
        // If this fails, showing the folder fails too and is reported.
        std::error_code ignored;
        std::filesystem::create_directories(folder, ignored);
        return openingIn(surroundings, stop).folder(folder);
    });
}

void DesktopOpener::reveal(const std::filesystem::path& file) {
    start(file, [file, surroundings = surroundings_, stop = stop_.get_token()] {
        return openingIn(surroundings, stop).reveal(file);
    });
}

void DesktopOpener::openPage(const std::string& address) {
    start(address, [address, surroundings = surroundings_, stop = stop_.get_token()] {
        return openingIn(surroundings, stop).address(address);
    });
}

void DesktopOpener::openPrivacySettings(const std::string& anchor) {
    const auto pages = privacySettingsPages(surroundings_.desktops, anchor);
    if (pages.empty()) {
        return;
    }
    start("the settings " + anchor,
          [pages, surroundings = surroundings_, stop = stop_.get_token()] {
              return std::ranges::any_of(pages,
                                         [&](const CommandLine& page) {
                                             return startDetached(page, surroundings.searchPath);
                                         }) ||
                     showHelp(surroundings, stop);
          });
}

} // namespace vantoro::desktop
