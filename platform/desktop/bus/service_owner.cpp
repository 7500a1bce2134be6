// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/service_owner.h"

#include <utility>

namespace vantoro::desktop {

namespace {

const std::string busService = "org.freedesktop.DBus";

} // namespace

ServiceOwner::ServiceOwner(BusConnection& bus, std::string service, std::function<void()> changed)
    : service_(std::move(service)), changed_(std::move(changed)) {
    // Subscribes before asking, so that no change is missed.
    const auto rule = "type='signal',sender='" + busService +
                      "',interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='" +
                      service_ + "'";
    bus.listen(rule, [this](BusMessage& signal) {
        const auto service = signal.readText();
        const auto before = signal.readText();
        const auto after = signal.readText();
        if (signal.sender() == busService && service == service_ && before && after) {
            set(*after);
        }
    });
    bus.call(busMethod("GetNameOwner"), {service_}, [this](BusMessage& reply) {
        set(reply.isError() ? "" : reply.readText().value_or(""));
    });
}

void ServiceOwner::set(const std::string& name) {
    if (name_ != name) {
        name_ = name;
        changed_();
    }
}

} // namespace vantoro::desktop
