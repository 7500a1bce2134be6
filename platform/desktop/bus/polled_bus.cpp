// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/polled_bus.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include <sys/eventfd.h>

#include <systemd/sd-bus.h>

#include "platform/posix/file_descriptor.h"

namespace vantoro::desktop {

namespace {

using Clock = std::chrono::steady_clock;

/// A bus does not announce a free slot.
constexpr std::chrono::milliseconds untilTriedAgain(20);

} // namespace

PolledBus::PolledBus(std::string address, std::function<void(PolledBus&)> connecting)
    : address_(std::move(address)), connecting_(std::move(connecting)) {
    connect();
}

bool PolledBus::ask(const BusMethod& method, const std::vector<BusArgument>& arguments,
                    BusReceive answered) {
    const bool isSent =
        bus_ != nullptr && callAsync(bus_.get(), method, arguments,
                                     [this, told = std::move(answered)](BusMessage& reply) {
                                         --unanswered_;
                                         told(reply);
                                     });
    unanswered_ += isSent ? 1 : 0;
    return isSent;
}

void PolledBus::addTo(std::vector<pollfd>& awaited) const {
    const int events = bus_ == nullptr ? -1 : sd_bus_get_events(bus_.get());
    if (events >= 0) {
        awaited.push_back(
            {.fd = sd_bus_get_fd(bus_.get()), .events = static_cast<short>(events), .revents = 0});
    }
}

void PolledBus::process() {
    if (isFull_) {
        connect();
    }
    int processed = bus_ == nullptr ? 0 : 1;
    while (processed > 0) {
        processed = sd_bus_process(bus_.get(), nullptr);
    }
    if (processed < 0) {
        bus_.reset();
    }
}

void PolledBus::connect() {
    auto attempt = startConnecting(address_);
    bus_ = std::move(attempt.bus);
    isFull_ = attempt.isFull;
    if (bus_ == nullptr) {
        return;
    }
    if (!ask(busMethod("GetId"), {}, [this](BusMessage& /*reply*/) { isAnswered_ = true; })) {
        bus_.reset();
    } else if (connecting_) {
        connecting_(*this);
    }
}

bool awaitBuses(std::span<PolledBus* const> buses, Clock::time_point deadline, int interruption) {
    std::vector<pollfd> awaited{{.fd = interruption, .events = POLLIN, .revents = 0}};
    auto until = deadline;
    for (const auto* const bus : buses) {
        if (bus != nullptr) {
            bus->addTo(awaited);
            until = bus->isFull() ? std::min(until, Clock::now() + untilTriedAgain) : until;
        }
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
    // It fails if memory is short or a signal arrives; the loop then checks everything again.
    static_cast<void>(::poll(awaited.data(), awaited.size(),
                             static_cast<int>(std::max<std::int64_t>(left.count(), 0))));
    for (auto* const bus : buses) {
        if (bus != nullptr) {
            bus->process();
        }
    }
    return awaited.front().revents == 0;
}

void awaitAnswers(std::span<PolledBus* const> buses, std::chrono::milliseconds limit,
                  int interruption) {
    const auto deadline = Clock::now() + limit;
    while (!std::ranges::all_of(buses, &PolledBus::areAllAnswered) && Clock::now() < deadline &&
           awaitBuses(buses, deadline, interruption)) {
    }
}

bool boundedCall(const std::string& busAddress, const BusMethod& question,
                 const std::vector<BusArgument>& arguments, const Patience& patience,
                 const BusReceive& read) {
    const posix::FileDescriptor stopped(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    const std::stop_callback tellOfStop(patience.stop,
                                        [&stopped] { ::eventfd_write(stopped.get(), 1); });
    if (patience.stop.stop_requested()) {
        return false;
    }
    bool hasSucceeded = false;
    PolledBus bus(busAddress, [&](PolledBus& connecting) {
        connecting.ask(question, arguments, [&](BusMessage& reply) {
            hasSucceeded = !reply.isError();
            if (hasSucceeded && read) {
                read(reply);
            }
        });
    });
    awaitAnswers(std::array{&bus}, patience.limit, stopped.get());
    return hasSucceeded;
}

} // namespace vantoro::desktop
