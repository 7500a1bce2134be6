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

/// How a watcher of status notifier items is asked for a panel that shows them.
BusMethod panelReading(const std::string& watcher);
std::vector<BusArgument> panelProperty();

/// By its answer: one that does not say is taken for part of a panel.
bool mayHavePanel(BusMessage& reply);

/// The status area of a desktop that has a watcher of status notifier items: it is available while
/// there is one that knows of a panel to show them. Main thread, which never waits for the bus.
class StatusNotifierArea final : public StatusArea {
public:
    /// At the address there is the session's bus; empty for none. On a bus that hangs it is never
    /// known whether the area is available.
    explicit StatusNotifierArea(std::string busAddress);
    StatusNotifierArea(const StatusNotifierArea&) = delete;
    StatusNotifierArea& operator=(const StatusNotifierArea&) = delete;
    ~StatusNotifierArea() override = default;

    std::unique_ptr<StatusItem> makeItem(StatusItemTraits traits) override;

    std::optional<bool> isAvailable() const override { return isAvailable_; }

    void setAvailabilityChanged(std::function<void()> changed) override;

private:
    void followPanels();
    void askForPanels();
    void setAvailable(bool isAvailable);

    std::string busAddress_;
    std::function<void()> changed_;
    std::optional<bool> isAvailable_;
    int itemsMade_ = 0;
    QObject events_; ///< with it ends what is under way
    BusConnection bus_;
    ServiceOwner watcher_;
};

} // namespace vantoro::desktop
