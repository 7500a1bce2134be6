// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/desktop/bus/bus_addresses.h"

namespace vantoro::desktop {

/// Whether the user chose the power saving profile; false without profiles, true if a bus does not
/// answer. Starts no service. Blocks for at most a second; any thread.
bool isPowerSaved(const BusAddresses& buses);

} // namespace vantoro::desktop
