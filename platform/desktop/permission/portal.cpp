// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/portal.h"

#include <array>

#include "platform/desktop/bus/polled_bus.h"

namespace vantoro::desktop {

namespace {

constexpr const char* permissionStore = "org.freedesktop.impl.portal.PermissionStore";

} // namespace

StoredPermission storedPermission(const std::vector<std::string>& words) {
    const auto word = words.empty() ? std::string() : words.front();
    return word == "yes"  ? StoredPermission::granted
           : word == "no" ? StoredPermission::refused
                          : StoredPermission::undecided;
}

bool microphoneDisabledByPortal(const std::string& sessionBus, std::chrono::milliseconds limit) {
    bool isDisabled = false;
    const auto askForLockdown = [&](PolledBus& bus, const std::string& service) {
        bus.ask(propertyReading(service, "/org/freedesktop/portal/desktop"),
                {"org.freedesktop.impl.portal.Lockdown", "disable-microphone"},
                [&](BusMessage& reply) {
                    isDisabled = isDisabled || reply.readFlagInVariant().value_or(false);
                });
    };
    PolledBus bus(sessionBus, [&](PolledBus& connecting) {
        connecting.ask(busMethod("ListNames"), {}, [&](BusMessage& reply) {
            for (const auto& service : reply.readTexts().value_or(BusTexts())) {
                if (service.starts_with("org.freedesktop.impl.portal.desktop.")) {
                    askForLockdown(connecting, service);
                }
            }
        });
    });
    awaitAnswers(std::array{&bus}, limit);
    return isDisabled;
}

StoredPermission storedMicrophonePermission(const std::string& sessionBus,
                                            const std::string& applicationID,
                                            std::chrono::milliseconds limit) {
    BusTexts words;
    boundedCall(sessionBus,
                {.service = permissionStore,
                 .path = "/org/freedesktop/impl/portal/PermissionStore",
                 .interface = permissionStore,
                 .member = "Lookup"},
                {"devices", "microphone"}, {.limit = limit, .stop = {}}, [&](BusMessage& reply) {
                    words = reply.readTextsOf(applicationID).value_or(BusTexts());
                });
    return storedPermission(words);
}

} // namespace vantoro::desktop
