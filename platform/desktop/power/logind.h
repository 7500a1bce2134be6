// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/bus/service_owner.h"
#include "platform/posix/file_descriptor.h"

namespace vantoro::desktop {

/// A logind inhibitor lock. Released as soon as its last owner drops it, even if logind has not
/// answered yet.
struct LogindInhibitor {
    std::string what;
    std::string reason;
    std::string mode;
    posix::FileDescriptor lock = posix::FileDescriptor(); ///< in force while open
};

constexpr const char* loginManagerService = "org.freedesktop.login1";

/// The method that takes an inhibitor lock, on the login manager with this unique bus name. Its
/// arguments: what, who, the reason, and the mode. The reply holds the lock; keep a duplicate.
BusMethod inhibition(const std::string& owner);

/// The login manager, whichever process owns its name; it may appear or restart at any time. Main
/// thread.
class Logind {
public:
    /// Both are called by the bus. `prepareForSleep`: true before sleep, false after it.
    /// `prepareForShutdown`: true before a shutdown or restart, false if that is cancelled. Destroy
    /// this together with the bus, which cannot unsubscribe its callbacks.
    Logind(BusConnection& systemBus, std::function<void(bool)> prepareForSleep,
           std::function<void(bool)> prepareForShutdown);

    /// Takes the lock as soon as there is a login manager, and again after each restart. `mode` is
    /// "delay" or "block".
    std::shared_ptr<LogindInhibitor> inhibit(std::string what, std::string reason,
                                             std::string mode);

private:
    void takeAll();
    void observe(const std::string& signal, std::function<void(bool)> prepare);
    void take(const std::shared_ptr<LogindInhibitor>& inhibitor);

    BusConnection& bus_;
    ServiceOwner owner_;
    std::vector<std::weak_ptr<LogindInhibitor>> inhibitors_;
};

} // namespace vantoro::desktop
