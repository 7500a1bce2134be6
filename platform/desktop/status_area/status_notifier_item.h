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

/// One item by the protocol of panels (org.kde.StatusNotifierItem), on a connection of its own to
/// the session's bus: panels tell items apart by their names on the bus. Registered with whichever
/// watcher there is, and again with every one that takes its place. Main thread.
class StatusNotifierItem final : public StatusItem {
public:
    /// `busName` is a name that nobody else should have; where it cannot be had, the item is known
    /// by its connection.
    StatusNotifierItem(const std::string& busAddress, const std::string& busName,
                       StatusItemTraits traits);
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;
    ~StatusNotifierItem() override = default;

    void setImage(const StatusImage& image, const std::string& description) override;

private:
    void takeBusName(const std::string& busName);

    bool isWatched() const { return !watcher_.name().value_or("").empty(); }

    void introduce();
    void tellSoon();
    void tell();

    std::function<void(const std::string&)> clicked_;
    StatusNotifierObject object_;
    std::string knownAs_;            ///< to the watcher; empty until it is known
    bool imageIsNews_ = false;       ///< to those who show the item
    bool descriptionIsNews_ = false; ///< likewise
    SignalPace pace_;
    QTimer untilTold_;
    QObject events_; ///< with it ends what is under way
    BusConnection bus_;
    ServiceOwner watcher_;
};

} // namespace vantoro::desktop
