// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>

#include "platform/desktop/bus/asked_bus.h"

namespace vantoro::desktop {

/// As the environment has it.
struct AccessibilitySettings {
    std::string address;     ///< of the accessibility bus; empty where the session's bus knows it
    bool isAlwaysOn = false; ///< whether or not anybody says that it is wanted
};

/// Asks what the toolkit asks before it shows its first window to screen readers, where it waits
/// for half a minute for each answer: whether that is wanted, where the accessibility bus is, and
/// whether the registry on it answers. Threads as for `AskedBus`.
class AccessibilityQuestions {
public:
    explicit AccessibilityQuestions(AccessibilitySettings settings);
    AccessibilityQuestions(const AccessibilityQuestions&) = delete;
    AccessibilityQuestions& operator=(const AccessibilityQuestions&) = delete;
    ~AccessibilityQuestions() = default;

    /// The session's bus, which outlives this, can be asked now.
    void begin(AskedBus& session);

    /// The session's bus cannot be asked any more.
    void endWithSession() { isOver_ = isOver_ || !bus_; }

    /// Whether nothing of it can keep the toolkit waiting.
    bool isSettled() const { return isOver_ || (bus_ && bus_->isSettled()); }

    /// Null while none is known.
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
