// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus_connection.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <utility>

#include <poll.h>

#include <systemd/sd-bus.h>

namespace vantoro::desktop {

namespace {

using Receive = BusConnection::Receive;

struct Release {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }

    void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};

using Message = std::unique_ptr<sd_bus_message, Release>;
using Slot = std::unique_ptr<sd_bus_slot, Release>;

/// A service may take its time: what is late is still of use.
constexpr auto noLimit = std::numeric_limits<std::uint64_t>::max();

/// Null when there is no bus at the address.
sd_bus* startConnecting(const std::string& address) {
    sd_bus* bus = nullptr;
    if (address.empty() || sd_bus_new(&bus) < 0) {
        return nullptr;
    }
    if (sd_bus_set_address(bus, address.c_str()) < 0 || sd_bus_set_bus_client(bus, 1) < 0 ||
        sd_bus_start(bus) < 0) {
        return sd_bus_close_unref(bus); // null
    }
    return bus;
}

int hand(sd_bus_message* message, void* receive, sd_bus_error* /*answer*/) {
    BusMessage received(message);
    (*static_cast<Receive*>(receive))(received);
    return 0; // others may hear it too
}

/// Leaves the function to the bus, for as long as it may call it.
bool keep(sd_bus_slot* started, std::unique_ptr<Receive> receive) {
    const Slot slot(started);
    if (sd_bus_slot_set_destroy_callback(
            slot.get(), [](void* kept) { delete static_cast<Receive*>(kept); }) < 0) {
        return false;
    }
    sd_bus_slot_set_userdata(slot.get(), receive.release());
    return sd_bus_slot_set_floating(slot.get(), 1) >= 0;
}

/// A moment of the bus's clock, which is the steady one, in microseconds.
std::chrono::milliseconds timeUntil(std::uint64_t moment) {
    using namespace std::chrono;
    const auto now = duration_cast<microseconds>(steady_clock::now().time_since_epoch());
    const auto left = microseconds(moment) - now;
    return std::max(ceil<milliseconds>(left), milliseconds(0));
}

} // namespace

void BusConnection::Close::operator()(sd_bus* bus) const {
    sd_bus_close_unref(bus);
}

BusConnection::BusConnection(const std::string& address) : bus_(startConnecting(address)) {
    if (bus_ == nullptr) {
        return;
    }
    const int socket = sd_bus_get_fd(bus_.get());
    readable_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    writable_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    deadline_.setSingleShot(true);
    const auto processOn = [this](const auto& source, auto event) {
        QObject::connect(&source, event, &deadline_, [this] { process(); });
    };
    processOn(*readable_, &QSocketNotifier::activated);
    processOn(*writable_, &QSocketNotifier::activated);
    processOn(deadline_, &QTimer::timeout);
    awaitEvents();
}

BusConnection::~BusConnection() = default;

bool BusConnection::call(const BusMethod& method, const std::vector<BusArgument>& arguments,
                         Receive answered) {
    sd_bus_message* created = nullptr;
    if (bus_ == nullptr || sd_bus_message_new_method_call(
                               bus_.get(), &created, method.service.c_str(), method.path.c_str(),
                               method.interface.c_str(), method.member.c_str()) < 0) {
        return false;
    }
    const Message message(created);
    if (!append(message.get(), arguments)) {
        return false;
    }
    auto receive = std::make_unique<Receive>(std::move(answered));
    sd_bus_slot* slot = nullptr;
    const int called =
        sd_bus_call_async(bus_.get(), &slot, message.get(), hand, receive.get(), noLimit);
    const bool succeeded = called >= 0 && keep(slot, std::move(receive));
    awaitEvents();
    return succeeded;
}

bool BusConnection::listen(const std::string& rule, Receive heard) {
    if (bus_ == nullptr) {
        return false;
    }
    auto receive = std::make_unique<Receive>(std::move(heard));
    sd_bus_slot* slot = nullptr;
    const int added =
        sd_bus_add_match_async(bus_.get(), &slot, rule.c_str(), hand, nullptr, receive.get());
    const bool succeeded = added >= 0 && keep(slot, std::move(receive));
    awaitEvents();
    return succeeded;
}

bool BusConnection::offer(const BusObject& object, const sd_bus_vtable* table,
                          void* functionsArgument) {
    return bus_ != nullptr &&
           sd_bus_add_object_vtable(bus_.get(), nullptr, object.path.c_str(),
                                    object.interface.c_str(), table, functionsArgument) >= 0;
}

bool BusConnection::tell(const BusObject& object, const std::string& signal) {
    if (bus_ == nullptr) {
        return false;
    }
    const int sent = sd_bus_emit_signal(bus_.get(), object.path.c_str(), object.interface.c_str(),
                                        signal.c_str(), nullptr);
    awaitEvents();
    return sent >= 0;
}

bool BusConnection::isBehind() const {
    std::uint64_t unsent = 0;
    return bus_ != nullptr && sd_bus_get_n_queued_write(bus_.get(), &unsent) >= 0 && unsent > 0;
}

void BusConnection::awaitEvents() {
    const int events = sd_bus_get_events(bus_.get()); // negative once it is closed
    readable_->setEnabled(events > 0 && (events & POLLIN) != 0);
    writable_->setEnabled(events > 0 && (events & POLLOUT) != 0);
    std::uint64_t due = 0;
    if (sd_bus_get_timeout(bus_.get(), &due) > 0) {
        deadline_.start(timeUntil(due));
    } else {
        deadline_.stop();
    }
}

void BusConnection::process() {
    if (sd_bus_process(bus_.get(), nullptr) < 0) {
        sd_bus_close(bus_.get());
    }
    awaitEvents();
}

} // namespace vantoro::desktop
