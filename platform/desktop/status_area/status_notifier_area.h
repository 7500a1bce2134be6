// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QObject>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"
#include "ui/ports/status_area.h"

namespace vantoro::desktop {

/// The question to a watcher of status notifier items whether a panel shows them.
BusMethod panelReading(const std::string& watcher);
std::vector<BusArgument> panelProperty();

/// True if the reply says so, or does not say: then the watcher is taken for part of a panel.
bool mayHavePanel(BusMessage& reply);

/// Available while a watcher for status notifier items has a panel that shows them. Main thread;
/// never waits for the bus.
class StatusNotifierArea final : public StatusArea {
public:
    /// Address of the session bus; empty for none. If it hangs, availability stays unknown.
    explicit StatusNotifierArea(std::string busAddress);

    std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) override;

    std::optional<bool> isAvailable() const override { return isAvailable_; }

    void setAvailabilityChanged(std::function<void()> changed) override;

private:
    void askForPanels();
    void setAvailable(bool isAvailable);

    std::string busAddress_;
    std::function<void()> changed_;
    std::optional<bool> isAvailable_;
    QObject events_; ///< cancels pending callbacks on destruction
    BusConnection bus_;
    ServiceOwner watcher_;
};

} // namespace vantoro::desktop
