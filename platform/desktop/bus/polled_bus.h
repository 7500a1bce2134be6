// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <span>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>

#include "platform/desktop/bus/bus_calls.h"

namespace vantoro::desktop {

/// A separate bus connection for callers that wait for answers within a time limit. Needs no event
/// loop; the caller polls. Not movable. One thread at a time.
class PolledBus {
public:
    /// Starts to connect. `connecting` runs once calls can be queued, in the constructor or in
    /// `process`.
    explicit PolledBus(std::string address, std::function<void(PolledBus&)> connecting = {});
    PolledBus(const PolledBus&) = delete;
    PolledBus& operator=(const PolledBus&) = delete;
    ~PolledBus() = default;

    /// Whether the bus itself has answered, or there is no connection.
    bool isSettled() const { return isAnswered_ || isGone(); }

    /// Whether all calls so far were answered, or cannot be.
    bool areAllAnswered() const { return isGone() || (bus_ != nullptr && unanswered_ == 0); }

    /// Whether no answer will come.
    bool isGone() const { return bus_ == nullptr && !isFull_; }

    /// Whether the bus refuses the connection for lack of slots; there is nothing to poll then.
    bool isFull() const { return isFull_; }

    /// False if the call cannot be sent. `answered` also receives errors, and may call `ask`.
    bool ask(const BusMethod& method, const std::vector<BusArgument>& arguments,
             BusReceive answered);

    /// As `listenAsync`.
    bool listen(const std::string& rule, BusReceive heard) {
        return bus_ != nullptr && listenAsync(bus_.get(), rule, std::move(heard));
    }

    /// Adds the events to poll for, if any.
    void addTo(std::vector<pollfd>& awaited) const;

    /// Reads what has arrived, and writes what is queued.
    void process();

private:
    void connect();

    std::string address_;
    std::function<void(PolledBus&)> connecting_;
    bool isFull_ = false;
    bool isAnswered_ = false;
    int unanswered_ = 0;
    Bus bus_;
};

/// Waits until some buses (null entries are skipped) were ready, and processes them, or until the
/// deadline. False if interrupted: `interruption` is a descriptor that has become readable, or
/// negative for none.
bool awaitBuses(std::span<PolledBus* const> buses, std::chrono::steady_clock::time_point deadline,
                int interruption = -1);

/// Waits until all calls were answered, for at most the limit, or until interrupted as above.
void awaitAnswers(std::span<PolledBus* const> buses, std::chrono::milliseconds limit,
                  int interruption = -1);

/// How long to wait for a service: at most `limit`, and not after `stop`.
struct Patience {
    /// Long enough to start a file manager from a slow disk.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
    std::stop_token stop;
};

/// Calls a method over a separate connection. Returns whether an answer came that is not an error,
/// and passes it to `read`. Sends nothing after `patience.stop`. Blocking; any thread.
bool boundedCall(const std::string& busAddress, const BusMethod& question,
                 const std::vector<BusArgument>& arguments, const Patience& patience,
                 const BusReceive& read = {});

} // namespace vantoro::desktop
