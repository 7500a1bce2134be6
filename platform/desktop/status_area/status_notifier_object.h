// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"
#include "ui/ports/status_area.h"

namespace vantoro::desktop {

/// The properties of a status notifier item and its click handler. Main thread.
struct StatusNotifierObject {
    std::string identifier;
    std::string toolTip;
    std::string description;
    StatusImage image;
    /// Called by the bus with the click's activation token, or an empty one.
    std::function<void(const std::string& activationToken)> clicked;

    std::string nextActivationToken; ///< for the next click
    std::string category = "Hardware";
    std::string status = "Active";
    std::string none; ///< icon names, which are not used
};

/// The interface's methods, properties and signals, for a `StatusNotifierObject`.
const sd_bus_vtable* statusNotifierTable();

} // namespace vantoro::desktop
