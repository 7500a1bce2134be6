// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QtCore/QObject>

#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/remote/control_interface.h"

struct sd_bus_message;

namespace vantoro::desktop {

using StartAnswer = std::function<void(const std::expected<void, ControlFailure>& result)>;
using StopAnswer = std::function<void(const std::expected<SavedRecording, ControlFailure>& result)>;

/// What the interface controls. Main thread.
class ControlledProgram {
public:
    ControlledProgram() = default;
    ControlledProgram(const ControlledProgram&) = delete;
    ControlledProgram& operator=(const ControlledProgram&) = delete;
    virtual ~ControlledProgram() = default;

    virtual ControlStatus status() const = 0;
    /// Call `answered` once: when the recording runs, or does not start. Some desktops require the
    /// token to bring a window to the front; it may be empty.
    virtual void start(const std::string& activationToken, StartAnswer answered) = 0;
    /// Call `answered` once: when the recording is saved, or cannot be.
    virtual void stop(const std::string& activationToken, StopAnswer answered) = 0;
    /// Marks this moment of the recording; the mark's number, from 1 on. Empty for the usual text.
    virtual std::expected<std::uint32_t, ControlFailure> mark(const std::string& text) = 0;
};

/// Serves the interface on a bus connection: answers calls when the program does, and signals
/// changes. Does nothing while nobody asks. Main thread.
class ControlService final : public QObject {
public:
    /// From now on the bus delivers calls. `bus` must outlive this, and export the object before
    /// others can know of it.
    explicit ControlService(BusConnection& bus);
    ControlService(const ControlService&) = delete;
    ControlService& operator=(const ControlService&) = delete;
    ~ControlService() override = default;

    /// The event loop calls `program` for each call, in order, including those that came before;
    /// null for none, as in the beginning.
    void serve(ControlledProgram* program);

    /// Signals what has changed since the last call, except times, progress and levels.
    void publish();

private:
    using Call = std::shared_ptr<sd_bus_message>;

    struct Handlers; // called by the bus

    void take(sd_bus_message* call, std::function<void(ControlledProgram&, const Call&)> carryOut);
    void carryOutCalls();
    void answer(const Call& call, const std::expected<void, ControlFailure>& result);
    void answer(const Call& call, const std::expected<SavedRecording, ControlFailure>& result);
    void answer(const Call& call, const std::expected<std::uint32_t, ControlFailure>& result);
    BusProperties properties() const;

    BusConnection& bus_;
    ControlledProgram* program_ = nullptr;
    std::vector<std::function<void(ControlledProgram&)>> waiting_;
    BusProperties published_;
};

} // namespace vantoro::desktop
