// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/power/logind.h"

#include <utility>

namespace vantoro::desktop {

namespace {

const std::string service = loginManagerService;
const std::string path = "/org/freedesktop/login1";
const std::string manager = "org.freedesktop.login1.Manager";

} // namespace

BusMethod inhibition(const std::string& owner) {
    return {.service = owner, .path = path, .interface = manager, .member = "Inhibit"};
}

Logind::Logind(BusConnection& systemBus, std::function<void(bool)> prepareForSleep,
               std::function<void(bool)> prepareForShutdown)
    : bus_(systemBus), owner_(systemBus, service, [this] { takeAll(); }) {
    observe("PrepareForSleep", std::move(prepareForSleep));
    observe("PrepareForShutdown", std::move(prepareForShutdown));
}

std::shared_ptr<LogindInhibitor> Logind::inhibit(std::string what, std::string reason,
                                                 std::string mode) {
    const auto inhibitor = std::make_shared<LogindInhibitor>(LogindInhibitor{
        .what = std::move(what), .reason = std::move(reason), .mode = std::move(mode)});
    std::erase_if(inhibitors_, [](const auto& one) { return one.expired(); });
    inhibitors_.push_back(inhibitor);
    take(inhibitor);
    return inhibitor;
}

/// The new owner knows nothing of locks taken from the previous one.
void Logind::takeAll() {
    for (const auto& wanted : inhibitors_) {
        if (const auto inhibitor = wanted.lock()) {
            take(inhibitor);
        }
    }
}

void Logind::observe(const std::string& signal, std::function<void(bool)> prepare) {
    bus_.listen("type='signal',sender='" + service + "',path='" + path + "',interface='" + manager +
                    "',member='" + signal + "'",
                [this, tell = std::move(prepare)](BusMessage& message) {
                    const auto begins = message.readFlag();
                    if (message.sender() == owner_.name() && begins) {
                        tell(*begins);
                    }
                });
}

void Logind::take(const std::shared_ptr<LogindInhibitor>& inhibitor) {
    const auto owner = owner_.name().value_or("");
    if (owner.empty()) {
        return;
    }
    bus_.call(inhibition(owner), {inhibitor->what, "Vantoro", inhibitor->reason, inhibitor->mode},
              [this, wanted = std::weak_ptr(inhibitor)](BusMessage& reply) {
                  const auto taken = wanted.lock(); // otherwise the lock is released with the reply
                  if (taken && !reply.isError() && reply.sender() == owner_.name()) {
                      taken->lock = reply.readFile().value_or(posix::FileDescriptor());
                  }
              });
}

} // namespace vantoro::desktop
