// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include <QtCore/QTemporaryDir>

#include "tests/platform/desktop/bus/private_bus.h"

namespace vantoro::testing {

/// A program that was started.
struct StartedProgram {
    std::string name;
    std::vector<std::string> arguments;
    pid_t session = 0;
    pid_t parent = 0;
};

/// A private set of desktop applications, which report when they start. Construct one per process,
/// before anything looks up applications.
///
/// `opener` opens *.m4a, `browser` *.html and web addresses; folders are opened by
/// `org.example.Folders`, a bus-activated application; nothing opens *.orphan.
class PrivateApplications {
public:
    PrivateApplications();
    PrivateApplications(const PrivateApplications&) = delete;
    PrivateApplications& operator=(const PrivateApplications&) = delete;
    ~PrivateApplications();

    static PrivateApplications& instance() { return *current; }

    /// Where the desktop's data files are looked up.
    std::filesystem::path dataFolder() const { return folder_ / "data"; }

    /// The environment's session bus, on which applications are asked to open something.
    const PrivateBus& bus() const { return bus_; }

    void addProgram(const std::filesystem::path& program) const;
    /// Waits for a program to start; none on timeout.
    std::optional<StartedProgram> nextStarted() const;
    /// Whether another program has reported its start.
    bool hasStarted() const;
    void forgetStarted() const;

private:
    static PrivateApplications* current;

    PrivateBus bus_;
    QTemporaryDir temporary_;
    std::filesystem::path folder_ = temporary_.path().toStdString();
    int fifo_ = -1;
};

} // namespace vantoro::testing
