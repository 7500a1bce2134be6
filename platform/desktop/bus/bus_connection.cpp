// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bus_connection.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <utility>

#include <poll.h>

#include <systemd/sd-bus.h>

namespace vantoro::desktop {

namespace {

/// `moment`: microseconds of the monotonic clock, which the bus uses.
std::chrono::milliseconds timeUntil(std::uint64_t moment) {
    using namespace std::chrono;
    const auto now = duration_cast<microseconds>(steady_clock::now().time_since_epoch());
    const auto left = microseconds(moment) - now;
    return std::max(ceil<milliseconds>(left), milliseconds(0));
}

} // namespace

BusConnection::BusConnection(const std::string& address) : bus_(startConnecting(address).bus) {
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

bool BusConnection::call(const BusMethod& method, const std::vector<BusArgument>& arguments,
                         BusReceive answered) {
    if (bus_ == nullptr) {
        return false;
    }
    const bool succeeded = callAsync(bus_.get(), method, arguments, std::move(answered));
    awaitEvents();
    return succeeded;
}

bool BusConnection::requestName(const std::string& name,
                                std::function<void(std::optional<bool>)> answered) {
    constexpr std::uint32_t doNotQueue = 4;
    constexpr std::uint32_t nowOwner = 1;
    return call(busMethod("RequestName"), {name, doNotQueue},
                [told = std::move(answered)](BusMessage& reply) {
                    const auto answer = reply.isError() ? std::nullopt : reply.readNumber();
                    told(answer ? std::optional(*answer == nowOwner) : std::nullopt);
                });
}

bool BusConnection::listen(const std::string& rule, BusReceive heard) {
    if (bus_ == nullptr) {
        return false;
    }
    const bool succeeded = listenAsync(bus_.get(), rule, std::move(heard));
    awaitEvents();
    return succeeded;
}

bool BusConnection::exportObject(const BusObject& object, const sd_bus_vtable* table,
                                 void* functionsArgument) {
    return bus_ != nullptr &&
           sd_bus_add_object_vtable(bus_.get(), nullptr, object.path.c_str(),
                                    object.interface.c_str(), table, functionsArgument) >= 0;
}

bool BusConnection::send(const std::function<int(sd_bus* bus)>& function) {
    if (bus_ == nullptr) {
        return false;
    }
    const int sent = function(bus_.get());
    awaitEvents();
    return sent >= 0;
}

bool BusConnection::sendSignal(const BusObject& object, const std::string& signal,
                               const std::vector<BusArgument>& arguments) {
    return send([&](sd_bus* bus) {
        return signalAsync(bus, object.path, object.interface, signal, arguments) ? 0 : -EIO;
    });
}

bool BusConnection::isBehind() const {
    std::uint64_t unsent = 0;
    return bus_ != nullptr && sd_bus_get_n_queued_write(bus_.get(), &unsent) >= 0 && unsent > 0;
}

void BusConnection::awaitEvents() {
    const int events = sd_bus_get_events(bus_.get()); // negative if closed
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
