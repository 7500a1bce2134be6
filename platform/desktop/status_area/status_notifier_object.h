// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"
#include "ui/ports/status_area.h"

namespace vantoro::desktop {

/// What a panel reads of an item in its status area, and what it calls. Main thread.
struct StatusNotifierObject {
    std::string identifier;
    std::string toolTip;
    std::string description;
    StatusImage image;
    /// Called by the bus with the token that was given for this click, or with an empty one.
    std::function<void(const std::string& activationToken)> clicked;

    std::string nextActivationToken; ///< of the click that is about to come
    std::string category = "Hardware";
    std::string status = "Active";
    std::string none; ///< we have no icons that go by names
};

/// The interface's methods, properties and signals, over a `StatusNotifierObject`.
const sd_bus_vtable* statusNotifierTable();

} // namespace vantoro::desktop
