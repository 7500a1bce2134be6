// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/recording_on_the_bus.h"

#include <chrono>
#include <optional>
#include <string>

#include <unistd.h>

#include "platform/desktop/bus/bus_addresses.h"
#include "platform/desktop/remote/control_interface.h"

namespace vantoro {

namespace {

/// A name that no other program has. Sandboxes number their processes alike, so the process ID
/// alone does not do.
std::string ownService() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return desktop::recordingServices + ("t" + std::to_string(now)) + "p" +
           std::to_string(::getpid());
}

} // namespace

RecordingOnTheBus::RecordingOnTheBus(RecordingViewModel& model)
    : bus_(desktop::standardBusAddresses().session),
      control_(
          model, service_,
          [&model](const std::string& /*activationToken*/) { model.startRecording(); },
          [&model](const std::string& /*activationToken*/) { model.stopRecording(); }) {
    // Without the name, nobody finds the recording; it runs all the same.
    static_cast<void>(bus_.requestName(ownService(), [](std::optional<bool> /*isOurs*/) {}));
}

} // namespace vantoro
