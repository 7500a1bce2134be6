// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "platform/desktop/bus/polled_bus.h"

namespace vantoro::desktop {

/// Opens the URI with its default application, in a session of its own, so that the application
/// outlives this program. False if there is none or it cannot be started. Blocking; any thread.
bool openWithDefaultApplication(const std::string& uri, const Patience& patience);

} // namespace vantoro::desktop
