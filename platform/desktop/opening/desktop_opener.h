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
#include "platform/desktop/opening/opening.h"

namespace vantoro::desktop {

/// The parts of the environment that the opener uses.
struct OpenerSurroundings {
    std::string sessionBus = standardBusAddresses().session;
    std::filesystem::path sandboxDescription = "/.flatpak-info";
    // Colon-separated: the desktop's names, and the folders to search for programs.
    std::string desktops = qgetenv("XDG_CURRENT_DESKTOP").toStdString();
    std::string searchPath = qgetenv("PATH").toStdString();
    /// The URL of a page for desktops without permission settings; if empty, the installed one.
    std::string helpPage;
    /// How long to wait for one service before trying the next option.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
};

/// An opener for Linux desktops. Works on its own threads; requests do not wait for each other.
/// Reports failures on standard error.
class DesktopOpener final : public Opener {
public:
    explicit DesktopOpener(OpenerSurroundings surroundings = {});
    DesktopOpener(const DesktopOpener&) = delete;
    DesktopOpener& operator=(const DesktopOpener&) = delete;
    /// Cancels what is pending; may wait for the disk, not for a service. Programs keep running.
    ~DesktopOpener() override;

    void open(const std::filesystem::path& file) override;
    void openFolder(const std::filesystem::path& folder) override;
    void reveal(const std::filesystem::path& file) override;
    void openPage(const std::string& address) override;
    void openPrivacySettings(const std::string& anchor) override;

private:
    using MakeOpening = std::function<Opening()>;

    /// Runs the work on a thread; reports `what` as failed if it returns false.
    void start(const std::string& what, std::function<bool(const MakeOpening& opening)> work);

    OpenerSurroundings surroundings_;
    std::stop_source stop_;
    QThreadPool threads_;
};

} // namespace vantoro::desktop
