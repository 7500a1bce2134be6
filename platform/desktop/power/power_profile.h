// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Whether the user chose the power saving profile. False if there are no profiles; starts no
/// service to find out. True if a bus does not answer, so that nothing more is asked of it. Blocks
/// for at most a second; any thread.
bool isPowerSaved(const BusAddresses& buses);

} // namespace vantoro::desktop
