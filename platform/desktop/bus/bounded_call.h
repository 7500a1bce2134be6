// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <stop_token>

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

namespace vantoro::desktop {

/// How long others are waited for: for `limit` at most, and not after `stop`.
struct Patience {
    /// A file manager may have to be started first, from a slow disk.
    std::chrono::milliseconds limit = std::chrono::seconds(10);
    std::stop_token stop;
};

/// Asks, starting the service where it can be started, and waits for the answer; an error or an
/// invalid message where none came. Does not ask any more after `stop`. Any thread but the main
/// one, which would serve events meanwhile; a Qt application must exist.
QDBusMessage boundedCall(const QDBusConnection& bus, const QDBusMessage& question,
                         const Patience& patience);

/// Whether the answer came and is not an error.
bool succeeds(const QDBusConnection& bus, const QDBusMessage& question, const Patience& patience);

} // namespace vantoro::desktop
