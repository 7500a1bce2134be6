// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/status_area/status_notifier_area.h"

#include <utility>

#include <QtCore/QMetaObject>

#include "platform/desktop/status_area/status_notifier_item.h"

namespace vantoro::desktop {

BusMethod panelReading(const std::string& watcher) {
    return propertyReading(watcher, "/StatusNotifierWatcher");
}

std::vector<BusArgument> panelProperty() {
    return {statusNotifierWatcher, "IsStatusNotifierHostRegistered"};
}

bool mayHavePanel(BusMessage& reply) {
    return reply.isError() || reply.readFlagInVariant().value_or(true);
}

StatusNotifierArea::StatusNotifierArea(std::string busAddress)
    : busAddress_(std::move(busAddress)),
      bus_(busAddress_),
      watcher_(bus_, statusNotifierWatcher, [this] { askForPanels(); }) {
    if (!bus_.isOpen()) {
        isAvailable_ = false;
        return;
    }
    for (const std::string signal :
         {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.listen("type='signal',sender='" + std::string(statusNotifierWatcher) +
                        "',interface='" + statusNotifierWatcher + "',member='" + signal + "'",
                    [this](BusMessage& /*signal*/) { askForPanels(); });
    }
}

std::unique_ptr<StatusItem> StatusNotifierArea::makeItem(StatusItemTraits traits) {
    return std::make_unique<StatusNotifierItem>(busAddress_, std::move(traits));
}

void StatusNotifierArea::setAvailabilityChanged(std::function<void()> changed) {
    changed_ = std::move(changed);
}

void StatusNotifierArea::askForPanels() {
    const auto owner = watcher_.name();
    if (!owner || owner->empty()) {
        setAvailable(false);
        return;
    }
    bus_.call(panelReading(*owner), panelProperty(), [this, owner](BusMessage& reply) {
        if (owner == watcher_.name()) {
            setAvailable(mayHavePanel(reply));
        }
    });
}

void StatusNotifierArea::setAvailable(bool isAvailable) {
    if (isAvailable_ == isAvailable) {
        return;
    }
    isAvailable_ = isAvailable;
    // Not within the bus's callback: the handler may destroy the area.
    QMetaObject::invokeMethod(
        &events_,
        [this] {
            if (changed_) {
                const auto changed = changed_;
                changed();
            }
        },
        Qt::QueuedConnection);
}

} // namespace vantoro::desktop
