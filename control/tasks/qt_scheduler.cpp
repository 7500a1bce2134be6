// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/tasks/qt_scheduler.h"

#include <system_error>
#include <utility>

#include <QtCore/QMetaObject>
#include <QtCore/QTimer>

namespace vantoro {

namespace {

class QtTimer final : public RepeatingTimer {
public:
    QtTimer(std::chrono::milliseconds interval, std::function<void()> fire) {
        timer_.setTimerType(Qt::PreciseTimer); // coarse timers may be 5 % late
        QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(fire));
        timer_.start(interval);
    }

private:
    QTimer timer_;
};

} // namespace

QtScheduler::QtScheduler(TaskStart taskStart) {
    if (taskStart == TaskStart::deferred) {
        waiting_.emplace();
    }
}

QtScheduler::~QtScheduler() {
    tasks_.clear(); // no task is added from here on
}

void QtScheduler::runOnMainThread(std::function<void()> work) {
    {
        const std::scoped_lock lock(mutex_);
        forMainThread_.push_back(std::move(work));
    }
    QMetaObject::invokeMethod(
        &mainThread_, [this] { runNextOnMainThread(); }, Qt::QueuedConnection);
}

void QtScheduler::runNextOnMainThread() {
    std::unique_lock lock(mutex_);
    const auto work = std::move(forMainThread_.front());
    forMainThread_.pop_front();
    lock.unlock();
    work();
}

void QtScheduler::runOnTaskThread(std::function<void()> work) {
    std::unique_lock lock(mutex_);
    if (waiting_) {
        waiting_->push_back(std::move(work));
        return;
    }
    forgetEndedTasks();
    auto& task = tasks_.emplace_back();
    task.work = std::move(work);
    // One thread per task: no task waits for another, and the destructor can join each.
    try {
        task.thread = std::jthread([&task] {
            task.work();
            task.work = nullptr; // also frees what it captured
            task.hasEnded = true;
        });
    } catch (const std::system_error&) { // out of threads
        const auto here = std::move(task.work);
        tasks_.pop_back();
        lock.unlock();
        here();
    }
}

void QtScheduler::startTasks() {
    std::unique_lock lock(mutex_);
    auto waited = std::exchange(waiting_, std::nullopt);
    lock.unlock();
    if (waited) {
        for (auto& work : *waited) {
            runOnTaskThread(std::move(work));
        }
    }
}

void QtScheduler::forgetEndedTasks() {
    std::erase_if(tasks_, [](const Task& task) { return task.hasEnded.load(); });
}

std::unique_ptr<RepeatingTimer> QtScheduler::startTimer(std::chrono::milliseconds interval,
                                                        std::function<void()> fire) {
    return std::make_unique<QtTimer>(interval, std::move(fire));
}

} // namespace vantoro
