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

/// The main thread is the one that this is made on; its event loop runs what is meant for it, and
/// its timers.
class QtScheduler final : public Scheduler {
public:
    /// What becomes of work for task threads before `letTasksBegin`.
    enum class TasksBegin : std::uint8_t { atOnce, whenLet };

    explicit QtScheduler(TasksBegin tasksBegin = TasksBegin::atOnce);
    QtScheduler(const QtScheduler&) = delete;
    QtScheduler& operator=(const QtScheduler&) = delete;
    /// Waits for the work on task threads; what has not begun, and what is still meant for the main
    /// thread, is dropped.
    ~QtScheduler() override;

    void runOnMainThread(std::function<void()> work) override;
    void runOnTaskThread(std::function<void()> work) override;
    /// From now on tasks begin at once, and those that wait begin now. Main thread.
    void letTasksBegin();
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
        waiting_; // the same; while tasks do not begin
    // Guarded by mutex_ and not left to the event loop, which only says that there is some: the
    // thread sanitizer sees what Qt's queue hands over, but not that it is handed over safely.
    std::deque<std::function<void()>> forMainThread_;
};

} // namespace vantoro
