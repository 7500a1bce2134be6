// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/bus/bounded_call.h"

#include <QtCore/QEventLoop>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingCallWatcher>

namespace vantoro::desktop {

QDBusMessage boundedCall(const QDBusConnection& bus, const QDBusMessage& question,
                         const Patience& patience) {
    if (patience.stop.stop_requested()) {
        return {};
    }
    QDBusPendingCallWatcher watcher(
        bus.asyncCall(question, static_cast<int>(patience.limit.count())));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    // Queued: to quit a loop that does not run yet has no effect.
    const std::stop_callback giveUp(patience.stop, [&loop] {
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    if (!watcher.isFinished()) {
        loop.exec();
    }
    return watcher.isFinished() ? watcher.reply() : QDBusMessage();
}

bool succeeds(const QDBusConnection& bus, const QDBusMessage& question, const Patience& patience) {
    return boundedCall(bus, question, patience).type() == QDBusMessage::ReplyMessage;
}

} // namespace vantoro::desktop
