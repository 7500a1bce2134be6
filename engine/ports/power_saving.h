// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

namespace vantoro {

/// Whether the user wants to save power by putting off work that can wait. An empty function means
/// no. Called on threads that may block; bounded in time.
using IsPowerSaved = std::function<bool()>;

} // namespace vantoro
