// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/desktop/bus/bus_message.h"

struct sd_bus;

namespace vantoro::desktop {

struct BusMethod {
    std::string service;
    std::string path;
    std::string interface;
    std::string member;
    bool startsService = true; ///< if it is not running and can be activated
};

/// A method of the bus itself.
BusMethod busMethod(std::string member);

/// Reads a property of a service, without starting it.
BusMethod propertyReading(std::string service, std::string path);

using BusReceive = std::function<void(BusMessage& message)>;

struct CloseBus {
    void operator()(sd_bus* bus) const;
};

using Bus = std::unique_ptr<sd_bus, CloseBus>;

struct BusAttempt {
    Bus bus;             ///< null if there is no bus, or it is full
    bool isFull = false; ///< the bus has no slot for another connection
};

/// Starts to connect; never blocks. Use the connection from one thread at a time.
BusAttempt startConnecting(const std::string& address);

/// Passes the reply, which may be an error such as a broken connection, to `answered`. False if the
/// call cannot be sent; then `answered` is not called.
bool callAsync(sd_bus* bus, const BusMethod& method, const std::vector<BusArgument>& arguments,
               BusReceive answered);

/// Emits a signal. False if it cannot be sent.
bool signalAsync(sd_bus* bus, const std::string& path, const std::string& interface,
                 const std::string& signal, const std::vector<BusArgument>& arguments);

/// Subscribes to the signals that match the rule. False if the subscription cannot be sent.
bool listenAsync(sd_bus* bus, const std::string& rule, BusReceive heard);

} // namespace vantoro::desktop
