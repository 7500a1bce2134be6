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
    bool startsService = true; ///< where it is not running, and can be started
};

/// What the bus itself answers.
BusMethod busMethod(std::string member);

/// The reading of a property of a service that is running.
BusMethod propertyReading(std::string service, std::string path);

using BusReceive = std::function<void(BusMessage& message)>;

struct CloseBus {
    void operator()(sd_bus* bus) const;
};

using Bus = std::unique_ptr<sd_bus, CloseBus>;

/// A connection that is being made, if there is a bus at the address.
struct BusAttempt {
    Bus bus;             ///< null where none is being made
    bool isFull = false; ///< since more programs wait to be let in than the bus has places for
};

/// Begins to connect, and waits for nothing. The connection is then used by one thread at a time.
BusAttempt startConnecting(const std::string& address);

/// Hands the reply over if and when it comes, an error too, as that of a connection that broke.
/// False when it cannot be sent: then nothing is handed over.
bool callAsync(sd_bus* bus, const BusMethod& method, const std::vector<BusArgument>& arguments,
               BusReceive answered);

/// Hears the signals that the rule is for. False when the bus cannot be told.
bool listenAsync(sd_bus* bus, const std::string& rule, BusReceive heard);

} // namespace vantoro::desktop
