// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include <poll.h>

#include "platform/desktop/bus/bus_calls.h"

namespace vantoro::desktop {

/// A connection of its own to a message bus for those who wait for answers, though not longer than
/// they like, should the bus hang or a service. Needs no event loop: whoever has it polls for what
/// it awaits. It does not move. One thread at a time.
class AskedBus {
public:
    /// Begins to connect. `first` is a question without arguments; `connecting` is called once more
    /// can be asked, within the constructor or `process`.
    explicit AskedBus(std::string address, std::function<void(AskedBus&)> connecting = {},
                      BusMethod first = busMethod("GetId"));
    AskedBus(const AskedBus&) = delete;
    AskedBus& operator=(const AskedBus&) = delete;
    ~AskedBus() = default;

    /// Whether the first question was answered, or there is no bus, or it broke the connection.
    bool isSettled() const { return isAnswered_ || isGone(); }

    /// Whether all was answered that was asked so far, or cannot be.
    bool areAllAnswered() const { return isGone() || (bus_ != nullptr && unanswered_ == 0); }

    /// Whether no answer will come.
    bool isGone() const { return bus_ == nullptr && !isFull_; }

    /// Whether the bus has no place for us yet; there is nothing to poll for then.
    bool isFull() const { return isFull_; }

    /// False when it cannot be sent. Also an error is an answer. More may be asked within one.
    bool ask(const BusMethod& method, const std::vector<BusArgument>& arguments,
             BusReceive answered);

    /// Adds what the bus awaits now, if anything.
    void addTo(std::vector<pollfd>& awaited) const;

    /// Takes what has come, and sends what waits.
    void process();

private:
    void connect();

    std::string address_;
    BusMethod first_;
    std::function<void(AskedBus&)> connecting_;
    bool isFull_ = false;
    bool isAnswered_ = false;
    int unanswered_ = 0;
    Bus bus_;
};

/// Returns once some of them, null for none, had something to take or to send, and did, or at the
/// deadline. False when it was interrupted: `interruption` is a descriptor that can be read from
/// then, or negative.
bool awaitBuses(std::span<AskedBus* const> buses, std::chrono::steady_clock::time_point deadline,
                int interruption = -1);

/// Returns once all was answered on them, at the deadline, or when it was interrupted, as above.
void awaitAnswers(std::span<AskedBus* const> buses, std::chrono::steady_clock::time_point deadline,
                  int interruption = -1);

} // namespace vantoro::desktop
