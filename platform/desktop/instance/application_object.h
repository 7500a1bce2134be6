// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"

namespace vantoro::desktop {

/// The actions in the desktop entry, besides opening the window.
enum class ApplicationAction : std::uint8_t { startRecording, stopRecording };

struct ApplicationRequest {
    /// Absent to show the window.
    std::optional<ApplicationAction> action;
    /// Lets the program bring its window to the front; may be empty.
    std::string activationToken;

    friend bool operator==(const ApplicationRequest&, const ApplicationRequest&) = default;
};

/// The program's object on the bus (org.freedesktop.Application), for the desktop and other runs.
/// Main thread.
struct ApplicationObject {
    /// Called by the bus.
    std::function<void(const ApplicationRequest& request)> requested;
};

constexpr const char* applicationInterface = "org.freedesktop.Application";

/// The interface's methods, for an `ApplicationObject`.
const sd_bus_vtable* applicationTable();

} // namespace vantoro::desktop
