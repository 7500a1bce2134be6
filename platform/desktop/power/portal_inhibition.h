// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_connection.h"

namespace vantoro::desktop {

/// The rule for the answers of the portal's back ends.
inline constexpr const char* portalResponse =
    "type='signal',interface='org.freedesktop.portal.Request',member='Response'";

/// Keeps the machine from suspending when idle, through the desktop portal; the screen may still
/// lock and turn off. Main thread.
class PortalInhibition {
public:
    /// The event loop calls `refused` once, if the portal is missing, refuses, or does not answer
    /// within `patience`. A later grant still takes effect. The bus must outlive this.
    PortalInhibition(BusConnection& sessionBus, const std::string& reason,
                     std::chrono::milliseconds patience, std::function<void()> refused);
    PortalInhibition(const PortalInhibition&) = delete;
    PortalInhibition& operator=(const PortalInhibition&) = delete;
    /// Releases the inhibition, even one that is granted later. `refused` is not called any more.
    ~PortalInhibition();

    /// To be told of every `portalResponse` signal: the portal grants before its back end answers.
    void heardResponse(BusMessage& response);

private:
    struct Request;

    BusConnection& bus_;
    QTimer patience_;
    std::shared_ptr<Request> request_;
};

} // namespace vantoro::desktop
