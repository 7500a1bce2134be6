// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"

namespace vantoro::desktop {

/// What the desktop entry offers beside opening the window.
enum class ApplicationAction : std::uint8_t { startRecording, stopRecording };

struct ApplicationRequest {
    /// Absent: the window is wanted.
    std::optional<ApplicationAction> action;
    /// The desktop's leave to bring the window to the front; empty where it gives none.
    std::string activationToken;

    friend bool operator==(const ApplicationRequest&, const ApplicationRequest&) = default;
};

/// What others on the bus may ask of the program, as the desktop does that starts it
/// (org.freedesktop.Application). Main thread.
struct ApplicationObject {
    /// Called by the bus.
    std::function<void(const ApplicationRequest& request)> requested;
};

constexpr const char* applicationInterface = "org.freedesktop.Application";

/// The interface's methods, over an `ApplicationObject`.
const sd_bus_vtable* applicationTable();

} // namespace vantoro::desktop
