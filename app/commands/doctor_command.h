// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>

#include "app/commands/doctor_report.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// Checks within a few seconds what recording into this folder depends on, leaving out late answers
/// and silent buses, and returns the result of `report`. If a check still hangs then, as a disk
/// may, ends the process with that status instead.
int examine(const std::filesystem::path& recordingFolder, const desktop::SilentBuses& silent,
            const std::function<int(const DoctorFindings& findings)>& report);

} // namespace vantoro
