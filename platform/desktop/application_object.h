#pragma once

#include <functional>
#include <string>

#include "platform/desktop/bus_connection.h"

namespace vantoro::desktop {

/// What others on the bus may ask of the program, as the desktop does that starts it
/// (org.freedesktop.Application). Main thread.
struct ApplicationObject {
    /// Called by the bus: the window is wanted. With the token the desktop lets us bring it to the
    /// front; it is empty where the desktop gives none.
    std::function<void(const std::string& activationToken)> activated;
};

constexpr const char* applicationInterface = "org.freedesktop.Application";

/// The interface's methods, over an `ApplicationObject`.
const sd_bus_vtable* applicationTable();

} // namespace vantoro::desktop
