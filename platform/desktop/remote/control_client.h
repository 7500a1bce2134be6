// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/desktop/bus/polled_bus.h"
#include "platform/desktop/remote/control_interface.h"

namespace vantoro::desktop {

/// A running program that has the interface.
struct RunningProgram {
    std::string service;                 ///< its name on the bus
    std::optional<ControlStatus> status; ///< absent if it does not answer
};

/// Why there is no answer.
enum class NoAnswer : std::uint8_t {
    noBus,
    silentBus,
    interrupted,
    silent,     ///< the program hangs
    gone,       ///< the program ended before it answered
    notStarted, ///< nobody has the name, and the bus cannot start a program for it
    late,       ///< the program answers other questions, but has not done it within the limit
};

/// A failure that the program itself tells, or no answer from it.
struct CallFailure {
    std::optional<NoAnswer> noAnswer;
    ControlFailure told; ///< if it answered
};

/// Controls the programs on a bus, and waits for their answers within limits. One thread.
class ControlClient {
public:
    struct Limits {
        /// What answers nothing for that long hangs.
        std::chrono::milliseconds silence = std::chrono::seconds(5);
        /// For starting a program and its recording.
        std::chrono::milliseconds start = std::chrono::seconds(30);
    };

    /// `interruption`: a descriptor that becomes readable to end a wait.
    ControlClient(const std::string& sessionBus, int interruption);
    ControlClient(const std::string& sessionBus, int interruption, const Limits& limits);

    /// The programs that run now; asks all of them at once. One that owes an answer since an
    /// earlier call is not asked again, nor waited for.
    std::expected<std::vector<RunningProgram>, NoAnswer> programs();

    /// From now on `awaitChange` knows of changes.
    void follow();

    /// Waits until a program comes, goes, signals a change or answers late, or until the deadline.
    /// False if interrupted, or the bus is gone.
    bool awaitChange(std::chrono::steady_clock::time_point deadline);

    /// Returns when the recording runs. If nobody has the name, the bus starts the program.
    std::expected<void, CallFailure> start(const std::string& service, const std::string& token);

    /// Waits until a program has the name.
    std::expected<void, NoAnswer> awaitService(const std::string& service);

    /// Marks this moment of the recording; the mark's number. Empty for the usual text.
    std::expected<std::uint32_t, CallFailure> mark(const std::string& service,
                                                   const std::string& text);

    /// Returns when the recording is saved, however long that takes, while the program answers.
    std::expected<SavedRecording, CallFailure> stop(const std::string& service,
                                                    const std::string& token);

private:
    using Clock = std::chrono::steady_clock;

    struct Waiting;
    struct Survey;

    void askForStatus(const std::shared_ptr<Survey>& survey, std::size_t index);
    /// False if interrupted.
    bool awaitConnection(Clock::time_point deadline);

    /// Waits for the answer to a method; `limit` is for the answer itself, apart from hanging.
    std::expected<void, CallFailure> call(const BusMethod& method,
                                          const std::vector<BusArgument>& arguments,
                                          std::optional<Clock::time_point> limit,
                                          const BusReceive& read);
    std::chrono::milliseconds pingInterval() const;
    void ping(const std::string& service, const std::shared_ptr<Waiting>& waiting);
    /// False if interrupted.
    bool await(Clock::time_point deadline);

    int interruption_;
    Limits limits_;
    std::set<std::string> owing_; ///< services that have not answered
    bool hasChanged_ = false;     ///< since the last `programs`
    PolledBus bus_;               ///< last: its callbacks use the members above
};

} // namespace vantoro::desktop
