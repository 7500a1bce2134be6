// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/desktop/bus/bus_connection.h"

namespace vantoro::desktop {

/// Follows which process has a name on the bus. Main thread. The bus must end together with this
/// object: it does not forget what it was given.
class ServiceOwner {
public:
    /// `changed` is called by the event loop: first when it is known whether there is an owner,
    /// then with every other. Not at all without a bus.
    ServiceOwner(BusConnection& bus, std::string service, std::function<void()> changed);

    /// The process's own name on the bus: empty for none, nothing while the bus has not answered.
    const std::optional<std::string>& name() const { return name_; }

private:
    void observe(BusConnection& bus);
    void set(const std::string& name);

    std::string service_;
    std::function<void()> changed_;
    std::optional<std::string> name_;
};

} // namespace vantoro::desktop
