// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>

#include "app/doctor_report.h"
#include "platform/desktop/bus/silent_buses.h"

namespace vantoro {

/// Asks everything that recording into this folder depends on: a few seconds at most, since whoever
/// does not answer in time is not waited for; the buses that are known to be silent, and left out,
/// are not asked. Main thread, where the application's event loop is
/// not yet running.
DoctorFindings examine(const std::filesystem::path& recordingFolder,
                       const desktop::SilentBuses& silent);

} // namespace vantoro
