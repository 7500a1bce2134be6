// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include "platform/desktop/bus/bus_calls.h"

struct sd_bus_vtable; // NOLINT(readability-identifier-naming): the name is the library's

namespace vantoro::desktop {

/// An object that this program exports.
struct BusObject {
    std::string path;
    std::string interface;
};

/// A separate bus connection on the main thread's event loop. Never blocks; calls made before the
/// connection stands are queued. Closed from the start if there is no bus; does not reconnect. The
/// event loop calls the given functions, never after destruction; they must not destroy the
/// connection. Main thread.
class BusConnection {
public:
    /// A local address such as `unix:path=/run/bus`; empty for no bus.
    explicit BusConnection(const std::string& address);

    /// Whether there was a bus to connect to.
    bool isOpen() const { return bus_ != nullptr; }

    /// As `callAsync`. False without a bus.
    bool call(const BusMethod& method, const std::vector<BusArgument>& arguments,
              BusReceive answered);

    /// Requests a name on the bus. `answered`: whether it is ours now; absent if the bus does not
    /// say. False as above.
    bool requestName(const std::string& name, std::function<void(std::optional<bool>)> answered);

    /// Subscribes to the signals that match the rule. Signals sent directly to this connection are
    /// not filtered by sender, so check it. False without a bus.
    bool listen(const std::string& rule, BusReceive heard);

    /// Exports an object until destruction. `table`, and `functionsArgument`, which its functions
    /// receive, must live as long. False without a bus.
    bool exportObject(const BusObject& object, const sd_bus_vtable* table, void* functionsArgument);

    /// Calls the function with the connection, to send what no function here sends. False without a
    /// bus, or if the function returns a negative number.
    bool send(const std::function<int(sd_bus* bus)>& function);

    /// Emits a signal. False if it cannot be sent.
    bool sendSignal(const BusObject& object, const std::string& signal,
                    const std::vector<BusArgument>& arguments = {});

    /// Whether output is queued because the bus does not read it.
    bool isBehind() const;

private:
    /// Watches for what the bus awaits; call after each use of it.
    void awaitEvents();
    void process();

    Bus bus_;
    std::unique_ptr<QSocketNotifier> readable_;
    std::unique_ptr<QSocketNotifier> writable_;
    QTimer deadline_;
};

} // namespace vantoro::desktop
