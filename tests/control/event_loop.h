// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace vantoro::testing {

/// The program's main thread.
class EventLoop {
public:
    /// Whether `isTrue` became true before the deadline; checks after each event.
    static bool runUntil(const std::function<bool()>& isTrue,
                         std::chrono::seconds limit = std::chrono::seconds(20)) {
        const QDeadlineTimer deadline(limit);
        QTimer wakeAtDeadline; // ends the wait for an event
        wakeAtDeadline.setSingleShot(true);
        // Coarse timers may be early, and no other event may follow.
        wakeAtDeadline.setTimerType(Qt::PreciseTimer);
        wakeAtDeadline.start(limit);
        while (!isTrue() && !deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return isTrue();
    }

private:
    int count_ = 1;
    char name_[8] = "control";
    char* arguments_[2] = {name_, nullptr};
    QCoreApplication application_{count_, arguments_};
};

} // namespace vantoro::testing
