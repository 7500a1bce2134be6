// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>

#include "app/commands/doctor_report.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// Checks everything that recording into this folder depends on, within a few seconds; late answers
/// are left out, and buses known to be silent are not asked. Passes the findings to `report` and
/// returns its result. If a check still hangs then, as a disk may, ends the process with that
/// status instead.
int examine(const std::filesystem::path& recordingFolder, const desktop::SilentBuses& silent,
            const std::function<int(const DoctorFindings& findings)>& report);

} // namespace vantoro
