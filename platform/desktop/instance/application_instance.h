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
#include "platform/desktop/instance/application_object.h"

namespace vantoro::desktop {

/// The name by which the desktop knows the program: that of its desktop entry, and on the bus.
constexpr const char* applicationID = "com.vantoro.app";

/// This run of the program among the others of the same session: the first one has the program's
/// name on the session's bus, and is asked by all others to show its window, and by the desktop
/// also for its actions. Main thread.
class ApplicationInstance {
public:
    enum class Role : std::uint8_t {
        first,
        another,
        unknown, ///< the bus does not say
    };

    /// Tries to become the first at the bus of this address. Without a bus each run is the first.
    explicit ApplicationInstance(const std::string& busAddress);
    ApplicationInstance(const ApplicationInstance&) = delete;
    ApplicationInstance& operator=(const ApplicationInstance&) = delete;
    ~ApplicationInstance() = default;

    /// `known` is called by the event loop once it is known, or the time is over.
    void whenRoleIsKnown(std::chrono::milliseconds patience, std::function<void(Role role)> known);

    /// `requested` is called by the event loop for everything that is asked of the program, in
    /// order, also for what was asked before this call. Not after the end of this.
    void setRequested(std::function<void(const ApplicationRequest& request)> requested);

    /// Has the first one show its window. `answered` is called by the event loop once it has, or
    /// the time is over: false when it has not, or could not.
    void activateFirst(const std::string& activationToken, std::chrono::milliseconds patience,
                       std::function<void(bool isShown)> answered);

private:
    /// Something that is to be told once it is known, though not later than somebody likes.
    template <class Value>
    class Answer {
    public:
        /// `told` is called by the event loop, with `otherwise` at the end of the patience.
        void await(std::chrono::milliseconds patience, Value otherwise,
                   std::function<void(Value)> told);
        /// Only the first counts.
        void come(Value value);

    private:
        std::optional<Value> value_;
        std::function<void(Value)> told_;
        QObject events_; ///< with it ends what is under way
    };

    void tellRequests();

    std::function<void(const ApplicationRequest&)> requested_;
    std::vector<ApplicationRequest> waiting_; ///< of which nobody was told yet
    ApplicationObject object_;
    Answer<Role> role_;
    std::shared_ptr<Answer<bool>> isShown_; ///< by the first one, which was asked to
    QObject events_;                        ///< with it ends what is under way
    BusConnection bus_;
};

/// The leave that whoever started this process gave it to bring a window to the front; empty for
/// none. To be read before the toolkit takes it.
std::string activationTokenOfThisStart();

} // namespace vantoro::desktop
