// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtDBus/QDBusConnection>

namespace vantoro::desktop {

/// Whether the user chose the desktop's profile that saves power. No where there are no profiles:
/// no service is started for the question. Any thread that may wait, a second at most.
bool isPowerSaved(const QDBusConnection& systemBus, const QDBusConnection& sessionBus);

/// On the buses of this system; yes where they do not answer, for then nothing more is asked of it.
bool isPowerSavedHere();

} // namespace vantoro::desktop
