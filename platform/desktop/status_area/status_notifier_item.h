// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <string>

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"
#include "platform/desktop/status_area/signal_pace.h"
#include "platform/desktop/status_area/status_notifier_object.h"
#include "ui/ports/status_area.h"

namespace vantoro::desktop {

constexpr const char* statusNotifierWatcher = "org.kde.StatusNotifierWatcher";

/// One status notifier item (org.kde.StatusNotifierItem), on its own session bus connection,
/// because panels identify items by bus name. Registers with the current watcher and each later
/// one. Main thread.
class StatusNotifierItem final : public StatusItem {
public:
    /// `busName` should be unique; if it is taken, the connection's name identifies the item.
    StatusNotifierItem(const std::string& busAddress, const std::string& busName,
                       StatusItemTraits traits);
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;
    ~StatusNotifierItem() override = default;

    void setImage(const StatusImage& image, const std::string& description) override;

private:
    void requestBusName(const std::string& busName);

    bool isWatched() const { return !watcher_.name().value_or("").empty(); }

    void registerWithWatcher();
    void scheduleSignals();
    void sendSignals();

    std::function<void(const std::string&)> clicked_;
    StatusNotifierObject object_;
    std::string registeredName_;      ///< the name registered with the watcher; empty until then
    bool imageChanged_ = false;       ///< not yet signalled
    bool descriptionChanged_ = false; ///< not yet signalled
    SignalPace pace_;
    QTimer signalTimer_;
    QObject events_; ///< cancels pending callbacks on destruction
    BusConnection bus_;
    ServiceOwner watcher_;
};

} // namespace vantoro::desktop
