// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"

namespace vantoro::desktop {

/// Follows which process owns a bus name. Main thread. Destroy it with the bus, which cannot
/// unsubscribe its callbacks.
class ServiceOwner {
public:
    /// The event loop calls `changed` once the owner or its absence is known, and on each change.
    ServiceOwner(BusConnection& bus, std::string service, std::function<void()> changed);

    /// The owner's unique name: empty if there is none, nothing until the bus answers.
    const std::optional<std::string>& name() const { return name_; }

private:
    void set(const std::string& name);

    std::string service_;
    std::function<void()> changed_;
    std::optional<std::string> name_;
};

} // namespace vantoro::desktop
