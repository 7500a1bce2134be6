// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_connection.h"

namespace vantoro::desktop {

/// Has the desktop portal keep the machine from suspending for want of a user; the screen may lock
/// and go dark. Main thread.
class PortalInhibition {
public:
    /// `refused` is called once, by the event loop, when there is no portal, when it refuses, or
    /// when it has not answered after `patience`. What it grants later holds all the same. The bus
    /// must live longer.
    PortalInhibition(BusConnection& sessionBus, const std::string& reason,
                     std::chrono::milliseconds patience, std::function<void()> refused);
    PortalInhibition(const PortalInhibition&) = delete;
    PortalInhibition& operator=(const PortalInhibition&) = delete;
    /// Gives back what was granted, and what is granted later. `refused` is not called any more.
    ~PortalInhibition();

private:
    struct Request;

    BusConnection& bus_;
    QTimer patience_;
    std::shared_ptr<Request> request_;
};

} // namespace vantoro::desktop
