// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

#include <QtDBus/QDBusConnection>

namespace vantoro::desktop {

/// Gives the session bus. To be called where it is needed, off the main thread: connecting takes as
/// long as the bus takes to answer.
using SessionBus = std::function<QDBusConnection()>;

} // namespace vantoro::desktop
