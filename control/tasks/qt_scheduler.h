// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include <QtCore/QObject>

#include "control/ports/scheduler.h"

namespace vantoro {

/// A scheduler on Qt's event loop. The thread that constructs it becomes the main thread.
class QtScheduler final : public Scheduler {
public:
    /// Whether tasks start at once, or wait for `startTasks`.
    enum class TaskStart : std::uint8_t { immediate, deferred };

    explicit QtScheduler(TaskStart taskStart = TaskStart::immediate);
    QtScheduler(const QtScheduler&) = delete;
    QtScheduler& operator=(const QtScheduler&) = delete;
    /// Waits for running tasks; drops tasks that have not started and pending main-thread work.
    ~QtScheduler() override;

    void runOnMainThread(std::function<void()> work) override;
    void runOnTaskThread(std::function<void()> work) override;
    /// Starts the tasks that wait; later ones start at once. Main thread.
    void startTasks();
    std::unique_ptr<RepeatingTimer> startTimer(std::chrono::milliseconds interval,
                                               std::function<void()> fire) override;

private:
    struct Task {
        std::function<void()> work;
        std::atomic<bool> hasEnded = false;
        std::jthread thread; // last: it uses the above
    };

    void runNextOnMainThread();
    void forgetEndedTasks();

    QObject mainThread_;
    std::mutex mutex_;
    std::list<Task> tasks_; // guarded by mutex_
    std::optional<std::vector<std::function<void()>>>
        waiting_; // guarded by mutex_; absent once tasks may begin
    // Guarded by mutex_; the event loop is only told to look here. The thread sanitizer cannot see
    // that Qt's own queue synchronises what passes through it.
    std::deque<std::function<void()>> forMainThread_;
};

} // namespace vantoro
