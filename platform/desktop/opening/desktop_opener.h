// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>

#include <QtCore/QThreadPool>

#include "control/ports/opener.h"
#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Where the opener finds the desktop.
struct OpenerSurroundings {
    std::string sessionBus = standardBusAddresses().session;
    std::filesystem::path sandboxDescription = "/.flatpak-info";
    /// The desktop's names, with colons between.
    std::string desktops = qgetenv("XDG_CURRENT_DESKTOP").toStdString();
    /// The folders that programs are looked for in, with colons between.
    std::string searchPath = qgetenv("PATH").toStdString();
    /// The address of a page about permissions, for desktops without settings of their own; where
    /// it is empty, the page that was installed with us.
    std::string helpPage;
    /// What a single service is waited for before the next best thing is tried.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
};

/// A Linux desktop. The work is done on threads of its own, and what is asked for does not wait for
/// what was asked for before. What could not be opened is named on standard error.
///
/// In a sandbox everything goes through the portal; outside, through the applications that the user
/// chose and the file manager.
class DesktopOpener final : public Opener {
public:
    explicit DesktopOpener(OpenerSurroundings surroundings = {});
    DesktopOpener(const DesktopOpener&) = delete;
    DesktopOpener& operator=(const DesktopOpener&) = delete;
    /// Gives up what is under way: waits for the disk perhaps, for no service. What was started
    /// goes on.
    ~DesktopOpener() override;

    void open(const std::filesystem::path& file) override;
    void openFolder(const std::filesystem::path& folder) override;
    void reveal(const std::filesystem::path& file) override;
    void openPage(const std::string& address) override;
    void openPrivacySettings(const std::string& anchor) override;

private:
    /// Has it done on a thread; `what` is named when it returns false.
    void start(const std::string& what, std::function<bool()> work);

    OpenerSurroundings surroundings_;
    std::stop_source stop_;
    QThreadPool threads_;
};

} // namespace vantoro::desktop
