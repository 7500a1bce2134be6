// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>

#include "platform/desktop/bus/asked_bus.h"

namespace vantoro::desktop {

/// From the environment.
struct AccessibilitySettings {
    std::string address;     ///< of the accessibility bus; if empty, the session bus knows it
    bool isAlwaysOn = false; ///< on without asking the session bus
};

/// Asks what the toolkit asks before its first window, where it waits half a minute for each
/// answer: whether accessibility is wanted, where its bus is, and whether the registry there
/// answers. Threads as for `AskedBus`.
class AccessibilityQuestions {
public:
    explicit AccessibilityQuestions(AccessibilitySettings settings);
    AccessibilityQuestions(const AccessibilityQuestions&) = delete;
    AccessibilityQuestions& operator=(const AccessibilityQuestions&) = delete;
    ~AccessibilityQuestions() = default;

    /// Call when the session bus can be asked. It must outlive this.
    void begin(AskedBus& session);

    /// Call when the session bus cannot be asked any more.
    void endWithSession() { isOver_ = isOver_ || !bus_; }

    /// Whether nothing here can make the toolkit wait.
    bool isSettled() const { return isOver_ || (bus_ && bus_->isSettled()); }

    /// Null until known.
    AskedBus* bus() { return bus_ ? &*bus_ : nullptr; }

private:
    void ask(const BusMethod& method, const std::vector<BusArgument>& arguments,
             BusReceive answered);
    void askWhetherWanted();
    void askForAddress();
    void connect(const std::string& address);

    AccessibilitySettings settings_;
    AskedBus* session_ = nullptr;
    bool isOver_ = false;
    std::optional<AskedBus> bus_;
};

} // namespace vantoro::desktop
