// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QObject>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/remote/control_service.h"

namespace vantoro::desktop {

/// The application ID: the name of its desktop entry and on the session bus.
constexpr const char* applicationID = "com.vantoro.app";

/// The actions in the desktop entry, besides opening the window.
enum class ApplicationAction : std::uint8_t { startRecording, stopRecording };

struct ApplicationRequest {
    std::optional<ApplicationAction> action; ///< absent to show the window
    std::string activationToken;             ///< to bring the window to the front; may be empty

    friend bool operator==(const ApplicationRequest&, const ApplicationRequest&) = default;
};

using TakeRequest = std::function<void(const ApplicationRequest& request)>;

/// One run of the program among those in the session. The first owns the program's name on the
/// session bus; the others ask it to show its window, and the desktop to act. Main thread.
class ApplicationInstance {
public:
    enum class Role : std::uint8_t {
        first,
        another,
        unknown, ///< the bus does not answer
    };

    enum class FirstAnswer : std::uint8_t {
        windowShown,
        hasEnded, ///< so this run may now be the first
        none,
    };

    /// Tries to become the first run on this bus. Without a bus, each run is the first.
    explicit ApplicationInstance(const std::string& busAddress);

    /// The event loop calls `known` when the role is known, or when `patience` is over.
    void whenRoleIsKnown(std::chrono::milliseconds patience, std::function<void(Role role)> known);

    /// The recording's control, on the same object. It takes calls from construction on.
    ControlService& control() { return control_; }

    /// The event loop calls `requested` for each request, in order, including those that came
    /// before this call; never after destruction.
    void setRequested(TakeRequest requested);

    /// Asks the first run to show its window. The event loop calls `answered` when it has, or has
    /// ended, or when `patience` is over.
    void activateFirst(const std::string& activationToken, std::chrono::milliseconds patience,
                       std::function<void(FirstAnswer answer)> answered);

private:
    template <class Value>
    class Answer {
    public:
        /// The event loop calls `callback` with the value, or after `patience` with `otherwise`.
        void await(std::chrono::milliseconds patience, Value otherwise,
                   std::function<void(Value)> callback);
        /// Only the first call counts.
        void set(Value value);

    private:
        std::optional<Value> value_;
        std::function<void(Value)> callback_;
        QObject events_; ///< cancels pending callbacks on destruction
    };

    void deliverRequests();

    TakeRequest requested_;
    std::vector<ApplicationRequest> pending_; ///< received before `setRequested`
    TakeRequest received_;                    ///< called by the bus
    Answer<Role> role_;
    std::shared_ptr<Answer<FirstAnswer>> firstAnswer_;
    QObject events_; ///< cancels pending callbacks on destruction
    BusConnection bus_;
    ControlService control_{bus_}; ///< before the name is requested
};

/// What this process was started with; empty for none. Read it before the toolkit consumes it.
std::string activationTokenOfThisStart();

} // namespace vantoro::desktop
