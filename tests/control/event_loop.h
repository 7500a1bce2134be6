// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace vantoro::testing {

/// A main thread as the program has it.
class EventLoop {
public:
    /// Whether it came true before the deadline; looked at after each event.
    static bool runUntil(const std::function<bool()>& isTrue,
                         std::chrono::seconds limit = std::chrono::seconds(20)) {
        const QDeadlineTimer deadline(limit);
        QTimer wakeAtDeadline; // so that waiting for an event ends
        wakeAtDeadline.setSingleShot(true);
        wakeAtDeadline.setTimerType(Qt::PreciseTimer); // another may be early, and the last event
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
