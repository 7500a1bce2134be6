// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Whether the user chose the desktop's profile that saves power. No where there are no profiles:
/// no service is started for the question. Yes where a bus does not answer, for then nothing more
/// is asked of it. Any thread that may wait, a second at most.
bool isPowerSaved(const BusAddresses& buses);

} // namespace vantoro::desktop
