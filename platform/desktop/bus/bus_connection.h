// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_calls.h"

struct sd_bus_vtable; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::desktop {

/// One of ours.
struct BusObject {
    std::string path;
    std::string interface;
};

/// A connection of its own to a message bus, which lives on the main thread's event loop and never
/// keeps it waiting: neither for the bus, connecting to it included, nor for a service. What is
/// asked for before the bus has let us in is sent as soon as it does. Without a bus it is closed
/// from the beginning; it does not connect again. Main thread.
///
/// The functions that it is given are called by the event loop, and not after its end. They must
/// not end it.
class BusConnection {
public:
    using Receive = BusReceive;

    /// A local address, as `unix:path=/run/bus`; empty for no bus.
    explicit BusConnection(const std::string& address);
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;
    ~BusConnection();

    /// Whether there was a bus to connect with.
    bool isOpen() const { return bus_ != nullptr; }

    /// Hands the reply over if and when it comes, an error too, as that of a connection that broke.
    /// False without a bus: then nothing is handed over.
    bool call(const BusMethod& method, const std::vector<BusArgument>& arguments, Receive answered);

    /// Hears the signals that the rule is for. One that is sent to us alone is heard whoever sent
    /// it: the receiver looks at the sender. False without a bus.
    bool listen(const std::string& rule, Receive heard);

    /// Offers an object to the others on the bus, until the connection's end. The table and the
    /// object, which its functions are given, must live as long. False without a bus.
    bool offer(const BusObject& object, const sd_bus_vtable* table, void* functionsArgument);

    /// Sends a signal without arguments to whoever listens. False when it cannot be sent.
    bool tell(const BusObject& object, const std::string& signal);

    /// Whether the bus has not taken yet what it was sent, as one that hangs.
    bool isBehind() const;

private:
    /// What the bus is waiting for now; after everything that is done with it.
    void awaitEvents();
    void process();

    Bus bus_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
    QTimer deadline_;
};

} // namespace vantoro::desktop
