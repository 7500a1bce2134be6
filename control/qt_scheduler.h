#pragma once

#include <QtCore/QObject>
#include <QtCore/QThreadPool>

#include "control/ports/scheduler.h"

namespace vantoro {

/// The main thread is the one that this is made on; its event loop runs what is meant for it, and
/// its timers.
class QtScheduler final : public Scheduler {
public:
    QtScheduler();
    QtScheduler(const QtScheduler&) = delete;
    QtScheduler& operator=(const QtScheduler&) = delete;
    /// Waits for the work on task threads; what is still meant for the main thread is dropped.
    ~QtScheduler() override;

    void runOnMainThread(std::function<void()> work) override;
    void runOnTaskThread(std::function<void()> work) override;
    std::unique_ptr<RepeatingTimer> startTimer(std::chrono::milliseconds interval,
                                               std::function<void()> fire) override;

private:
    QObject mainThread_;
    QThreadPool taskThreads_;
};

} // namespace vantoro
