// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtDBus/QDBusConnection>

namespace vantoro::desktop {

/// The toolkit's connection to the bus, or one that is not connected where the bus does not answer:
/// to connect, the toolkit would wait for half a minute or for ever, and again at the program's
/// end. Whether the bus answers is asked each time; one that did not within two seconds is taken
/// for silent for a minute. Any thread that may wait so long.
QDBusConnection answeringSessionBus();
QDBusConnection answeringSystemBus();

} // namespace vantoro::desktop
