// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/desktop/bus/bus_calls.h"
#include "ui/ports/notifications.h"

namespace vantoro::desktop {

constexpr const char* notificationService = "org.freedesktop.Notifications";
constexpr const char* notificationPortal = "org.freedesktop.portal.Desktop";
constexpr const char* notificationPortalInterface = "org.freedesktop.portal.Notification";
/// What both services call a click on the notification itself.
constexpr const char* clickAction = "default";

BusMethod notificationMethod(std::string member);
BusMethod notificationPortalMethod(std::string member);

/// The arguments of Notify for a service with these capabilities. `replaced` is 0 for a new one.
std::vector<BusArgument> notifyArguments(const Notification& notification, std::uint32_t replaced,
                                         const BusTexts& capabilities);

/// The arguments of the portal's AddNotification.
std::vector<BusArgument> portalArguments(const std::string& topic,
                                         const Notification& notification);

} // namespace vantoro::desktop
