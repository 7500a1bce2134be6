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

/// Something that logind puts off or does not do. It ends when the last who shares it gives it up,
/// at once, and even while logind has not answered yet.
struct LogindInhibitor {
    std::string what;
    std::string reason;
    std::string mode;
    posix::FileDescriptor lock = posix::FileDescriptor(); ///< in force for as long as it is open
};

constexpr const char* loginManagerService = "org.freedesktop.login1";

/// How whichever process is the login manager, by its own name on the bus, is asked to put
/// something off: what, who wants it, the reason, and the mode. Its answer holds the lock, which
/// ends with it unless it is kept.
BusMethod inhibition(const std::string& owner);

/// The login manager of the system, whichever process is it at the moment; where there is none it
/// may come yet. Main thread.
class Logind {
public:
    /// Both are called by the bus. `prepareForSleep`: true before a sleep, false after it;
    /// `prepareForShutdown`: true before the machine is switched off or started anew, false when
    /// that was called off. The bus must end together with this object: it does not forget what it
    /// was given.
    Logind(BusConnection& systemBus, std::function<void(bool)> prepareForSleep,
           std::function<void(bool)> prepareForShutdown);

    /// Taken as soon as there is a login manager, and again whenever another takes its place.
    /// `mode` is "delay" or "block".
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
