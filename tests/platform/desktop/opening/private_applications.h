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

/// The applications of a desktop of its own, and programs that tell of their start. To be made
/// before anything asks for the desktop's applications, and once in a program.
///
/// `opener` opens *.m4a, `browser` *.html and addresses of the web; folders are opened by
/// `org.example.Folders`, which would be a service on the bus; nothing opens *.orphan.
class PrivateApplications {
public:
    PrivateApplications();
    PrivateApplications(const PrivateApplications&) = delete;
    PrivateApplications& operator=(const PrivateApplications&) = delete;
    ~PrivateApplications();

    static PrivateApplications& instance() { return *current; }

    /// Where data of the desktop's is looked for.
    std::filesystem::path dataFolder() const { return folder_ / "data"; }

    /// On which applications are asked to open something: the environment's session bus.
    const PrivateBus& bus() const { return bus_; }

    void addProgram(const std::filesystem::path& program) const;
    /// Waits for a program to be started; none when that takes too long.
    std::optional<StartedProgram> nextStarted() const;
    /// Whether another one has told of its start by now.
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
