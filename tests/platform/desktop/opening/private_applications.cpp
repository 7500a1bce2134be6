// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/desktop/opening/private_applications.h"

#include <array>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QDeadlineTimer>

namespace vantoro::testing {

namespace {

void write(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path);
    file << text;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

std::string entry(const std::string& more) {
    return "[Desktop Entry]\nType=Application\nName=Test\n" + more;
}

StartedProgram parse(const std::string& report) {
    std::istringstream lines(report);
    StartedProgram started;
    std::string name;
    std::getline(lines, name);
    started.name = std::filesystem::path(name).filename();
    lines >> started.session >> started.parent >> std::ws;
    for (std::string line; std::getline(lines, line) && line != ".";) {
        started.arguments.push_back(line);
    }
    return started;
}

} // namespace

PrivateApplications* PrivateApplications::current = nullptr;

PrivateApplications::PrivateApplications() {
    const auto fifo = folder_ / "started";
    if (::mkfifo(fifo.c_str(), 0600) != 0) {
        throw std::runtime_error("no place for reports of programs");
    }
    // Open for writing too, so that writers never block and readers never see end of file.
    fifo_ = ::open(fifo.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    const auto applications = dataFolder() / "applications";
    const auto programs = folder_ / "programs";
    addProgram(programs / "opener");
    addProgram(programs / "browser");
    write(applications / "opener.desktop", entry("Exec=" + (programs / "opener %f\n").string()));
    write(applications / "browser.desktop", entry("Exec=" + (programs / "browser %u\n").string()));
    write(applications / "org.example.Folders.desktop", entry("DBusActivatable=true\n"));
    write(dataFolder() / "mime" / "globs2",
          "50:audio/x-test:*.m4a\n50:text/html:*.html\n50:application/x-test-orphan:*.orphan\n");
    write(folder_ / "configuration" / "mimeapps.list",
          "[Default Applications]\naudio/x-test=opener.desktop\ntext/html=browser.desktop\n"
          "x-scheme-handler/https=browser.desktop\ninode/directory=org.example.Folders.desktop\n");
    ::setenv("XDG_DATA_HOME", dataFolder().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (folder_ / "configuration").c_str(), 1);
    for (const auto* others : {"XDG_DATA_DIRS", "XDG_CONFIG_DIRS"}) {
        ::setenv(others, (folder_ / "none").c_str(), 1);
    }
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().toUtf8().constData(), 1);
    ::unsetenv("XDG_CURRENT_DESKTOP");
    current = this;
}

PrivateApplications::~PrivateApplications() {
    current = nullptr;
    ::close(fifo_);
}

void PrivateApplications::addProgram(const std::filesystem::path& program) const {
    // The fields of /proc/PID/stat: process ID, name and state, then parent, group and session.
    write(program, "#!/bin/sh\nread -r _ _ _ parent _ session _ </proc/$$/stat\n"
                   "printf '%s\\n' \"$0\" \"$session $parent\" \"$@\" . >'" +
                       (folder_ / "started").string() + "'\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
}

std::optional<StartedProgram> PrivateApplications::nextStarted() const {
    const QDeadlineTimer deadline(30'000);
    std::string report;
    while (!report.ends_with("\n.\n")) {
        pollfd readable{.fd = fifo_, .events = POLLIN, .revents = 0};
        if (::poll(&readable, 1, static_cast<int>(deadline.remainingTime())) <= 0) {
            return std::nullopt;
        }
        std::array<char, 4096> bytes{};
        const auto count = ::read(fifo_, bytes.data(), bytes.size());
        if (count <= 0) {
            return std::nullopt;
        }
        report.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return parse(report);
}

bool PrivateApplications::hasStarted() const {
    pollfd readable{.fd = fifo_, .events = POLLIN, .revents = 0};
    return ::poll(&readable, 1, 0) > 0;
}

void PrivateApplications::forgetStarted() const {
    std::array<char, 4096> bytes{};
    while (::read(fifo_, bytes.data(), bytes.size()) > 0) {
    }
}

} // namespace vantoro::testing
