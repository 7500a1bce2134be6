// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/remote/remote_control.h"
#include "platform/desktop/bus/bus_connection.h"
#include "platform/desktop/remote/control_service.h"

namespace vantoro {

/// Lets other programs stop and follow a recording that has no window. Never waits for the bus, and
/// does nothing without one. Main thread.
class RecordingOnTheBus {
public:
    /// `model` must outlive this.
    explicit RecordingOnTheBus(RecordingViewModel& model);

private:
    desktop::BusConnection bus_;
    desktop::ControlService service_{bus_};
    RemoteControl control_;
};

} // namespace vantoro
