// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/asked_service.h"

#include <utility>

namespace vantoro::desktop {

AskedService::AskedService(BusMethod question, std::vector<BusArgument> arguments)
    : question_(std::move(question)), arguments_(std::move(arguments)) {}

void AskedService::begin(AskedBus& bus) {
    bus_ = &bus;
    isSettled_ = !bus.ask({.service = "org.freedesktop.DBus",
                           .path = "/org/freedesktop/DBus",
                           .interface = "org.freedesktop.DBus",
                           .member = "NameHasOwner"},
                          {question_.service}, [this](BusMessage& reply) {
                              if (reply.readFlag().value_or(false)) {
                                  askService();
                              } else {
                                  isSettled_ = true;
                              }
                          });
}

void AskedService::askService() {
    isSettled_ =
        !bus_->ask(question_, arguments_, [this](BusMessage& /*reply*/) { isSettled_ = true; });
}

} // namespace vantoro::desktop
