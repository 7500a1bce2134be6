// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"

namespace vantoro::desktop {

/// Whether the user prefers dark windows, as the settings portal says. False until it answers;
/// stays what it was when the portal goes. Main thread; never waits for the bus.
class DarkPreference {
public:
    /// `busAddress`: of the session bus; empty for none. The event loop calls `changed` at each
    /// change; it must not destroy this.
    DarkPreference(const std::string& busAddress, std::function<void(bool isDark)> changed);

private:
    void ask(const std::string& member);
    void heard(BusMessage& value);

    std::function<void(bool)> changed_;
    bool isDark_ = false;
    BusConnection bus_;
    ServiceOwner portal_;
};

} // namespace vantoro::desktop
