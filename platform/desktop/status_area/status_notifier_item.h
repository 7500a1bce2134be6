// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"
#include "platform/desktop/status_area/item_menu.h"
#include "ui/ports/status_area.h"

namespace vantoro::desktop {

constexpr const char* statusNotifierWatcher = "org.kde.StatusNotifierWatcher";

/// The properties of a status notifier item and its click handler.
struct StatusNotifierObject {
    std::string identifier;
    std::string toolTip;
    std::string toolTipDetail;
    std::string description;
    StatusImage image;
    /// Called by the bus with the click's activation token, or an empty one.
    std::function<void(const std::string& activationToken)> clicked;

    std::string nextActivationToken; ///< for the next click
    std::string category = "Hardware";
    std::string status = "Active";
    std::string none; ///< icon names, which are not used
};

/// One status notifier item (org.kde.StatusNotifierItem), on its own session bus connection, since
/// panels identify items by connection. Registers with each watcher that comes. Main thread.
class StatusNotifierItem final : public StatusItem {
public:
    /// Between two signals: at most 15 per second.
    static constexpr std::chrono::milliseconds signalDistance{67};

    StatusNotifierItem(const std::string& busAddress, StatusItemTraits traits);

    void setImage(const StatusImage& image, const std::string& description) override;
    void setToolTipDetail(const std::string& detail) override;

    void setMenu(const StatusMenu& menu) override { menu_.set(menu); }

private:
    bool isWatched() const { return !watcher_.name().value_or("").empty(); }

    void registerWithWatcher();
    void signalChanges();
    void signalEachChange();

    std::function<void(const std::string&)> clicked_;
    StatusNotifierObject object_;
    bool isExported_ = false;
    bool imageChanged_ = false;       ///< not yet signalled
    bool descriptionChanged_ = false; ///< not yet signalled
    bool toolTipChanged_ = false;     ///< not yet signalled
    QTimer pause_;                    ///< after a signal
    QObject events_;                  ///< cancels pending callbacks on destruction
    BusConnection bus_;
    ItemMenu menu_;
    ServiceOwner watcher_;
};

} // namespace vantoro::desktop
