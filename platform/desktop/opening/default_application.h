// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

#include "platform/desktop/bus/bounded_call.h"

namespace vantoro::desktop {

/// Opens an address, a file's or another, with the application that the desktop has for it, in a
/// session of its own: it outlives us. False where there is no such application, or it cannot be
/// started. Any thread that may wait.
bool openWithDefaultApplication(const std::string& uri, const Patience& patience);

} // namespace vantoro::desktop
