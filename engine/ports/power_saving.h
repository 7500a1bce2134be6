// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

namespace vantoro {

/// Whether the user wants power to be saved, and not spent on what can wait. May be empty: no.
/// Called on threads that may wait; bounded in time.
using IsPowerSaved = std::function<bool()>;

} // namespace vantoro
