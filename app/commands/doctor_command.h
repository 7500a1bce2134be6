// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>

#include "app/commands/doctor_report.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// Asks everything that recording into this folder depends on: a few seconds at most, since whoever
/// does not answer in time is not waited for; the buses that are known to be silent, and left out,
/// are not asked. Returns what `report`, called with all that was found, says; where somebody still
/// hangs then, as a disk may, ends the process with that instead.
int examine(const std::filesystem::path& recordingFolder, const desktop::SilentBuses& silent,
            const std::function<int(const DoctorFindings& findings)>& report);

} // namespace vantoro
