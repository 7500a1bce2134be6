// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bus_calls.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <utility>

#include <systemd/sd-bus.h>

namespace vantoro::desktop {

namespace {

struct Release {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }

    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

using Message = std::unique_ptr<sd_bus_message, Release>;
using Slot = std::unique_ptr<sd_bus_slot, Release>;

/// No time limit: late answers are useful too.
constexpr auto noLimit = std::numeric_limits<std::uint64_t>::max();

int hand(sd_bus_message* message, void* receive, sd_bus_error* /*answer*/) {
    BusMessage received(message);
    (*static_cast<BusReceive*>(receive))(received);
    return 0; // lets other handlers see it too
}

/// Transfers ownership of the function to the bus slot.
bool keep(sd_bus_slot* started, std::unique_ptr<BusReceive> receive) {
    const Slot slot(started);
    if (sd_bus_slot_set_destroy_callback(
            slot.get(), [](void* kept) { delete static_cast<BusReceive*>(kept); }) < 0) {
        return false;
    }
    sd_bus_slot_set_userdata(slot.get(), receive.release());
    return sd_bus_slot_set_floating(slot.get(), 1) >= 0;
}

} // namespace

void CloseBus::operator()(sd_bus* bus) const {
    sd_bus_close_unref(bus);
}

BusMethod busMethod(std::string member) {
    return {.service = "org.freedesktop.DBus",
            .path = "/org/freedesktop/DBus",
            .interface = "org.freedesktop.DBus",
            .member = std::move(member)};
}

BusMethod propertyReading(std::string service, std::string path) {
    return {.service = std::move(service),
            .path = std::move(path),
            .interface = "org.freedesktop.DBus.Properties",
            .member = "Get",
            .startsService = false};
}

BusAttempt startConnecting(const std::string& address) {
    sd_bus* created = nullptr;
    if (address.empty() || sd_bus_new(&created) < 0) {
        return {};
    }
    Bus bus(created);
    if (sd_bus_set_address(bus.get(), address.c_str()) < 0 ||
        sd_bus_set_bus_client(bus.get(), 1) < 0) {
        return {};
    }
    const int started = sd_bus_start(bus.get());
    if (started < 0) {
        return {.bus = nullptr, .isFull = started == -EAGAIN};
    }
    return {.bus = std::move(bus)};
}

bool callAsync(sd_bus* bus, const BusMethod& method, const std::vector<BusArgument>& arguments,
               BusReceive answered) {
    sd_bus_message* created = nullptr;
    if (sd_bus_message_new_method_call(bus, &created, method.service.c_str(), method.path.c_str(),
                                       method.interface.c_str(), method.member.c_str()) < 0) {
        return false;
    }
    const Message message(created);
    if (sd_bus_message_set_auto_start(message.get(), method.startsService ? 1 : 0) < 0 ||
        !append(message.get(), arguments)) {
        return false;
    }
    auto receive = std::make_unique<BusReceive>(std::move(answered));
    sd_bus_slot* slot = nullptr;
    return sd_bus_call_async(bus, &slot, message.get(), hand, receive.get(), noLimit) >= 0 &&
           keep(slot, std::move(receive));
}

bool signalAsync(sd_bus* bus, const std::string& path, const std::string& interface,
                 const std::string& signal, const std::vector<BusArgument>& arguments) {
    sd_bus_message* created = nullptr;
    if (sd_bus_message_new_signal(bus, &created, path.c_str(), interface.c_str(), signal.c_str()) <
        0) {
        return false;
    }
    const Message message(created);
    return append(message.get(), arguments) && sd_bus_send(bus, message.get(), nullptr) >= 0;
}

bool listenAsync(sd_bus* bus, const std::string& rule, BusReceive heard) {
    auto receive = std::make_unique<BusReceive>(std::move(heard));
    sd_bus_slot* slot = nullptr;
    return sd_bus_add_match_async(bus, &slot, rule.c_str(), hand, nullptr, receive.get()) >= 0 &&
           keep(slot, std::move(receive));
}

} // namespace vantoro::desktop
