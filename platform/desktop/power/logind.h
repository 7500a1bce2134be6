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

/// An inhibitor lock. Released when its last owner drops it, even before logind has answered.
struct LogindInhibitor {
    std::string what;
    std::string reason;
    std::string mode;
    posix::FileDescriptor lock = posix::FileDescriptor(); ///< in force while open
};

constexpr const char* loginManagerService = "org.freedesktop.login1";

/// Takes an inhibitor lock on the login manager with this unique bus name. Arguments: what, who,
/// the reason, and the mode. The reply holds the lock; keep a duplicate.
BusMethod inhibition(const std::string& owner);

/// The login manager, which may appear or restart at any time. Main thread.
class Logind {
public:
    /// The bus calls `prepareForSleep` with true before sleep and false after it, and
    /// `prepareForShutdown` with true before a shutdown or restart and false if that is cancelled.
    /// Destroy this with the bus, which cannot unsubscribe its callbacks.
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
