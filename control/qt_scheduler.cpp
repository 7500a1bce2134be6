#include "control/qt_scheduler.h"

#include <limits>
#include <utility>

#include <QtCore/QMetaObject>
#include <QtCore/QTimer>

namespace vantoro {

namespace {

class QtTimer final : public RepeatingTimer {
public:
    QtTimer(std::chrono::milliseconds interval, std::function<void()> fire) {
        timer_.setTimerType(Qt::PreciseTimer); // a coarse one may be late by a twentieth
        QObject::connect(&timer_, &QTimer::timeout, &timer_, std::move(fire));
        timer_.start(interval);
    }

private:
    QTimer timer_;
};

} // namespace

QtScheduler::QtScheduler() {
    taskThreads_.setMaxThreadCount(std::numeric_limits<int>::max()); // nothing waits for a thread
}

QtScheduler::~QtScheduler() {
    taskThreads_.waitForDone();
}

void QtScheduler::runOnMainThread(std::function<void()> work) {
    QMetaObject::invokeMethod(&mainThread_, std::move(work), Qt::QueuedConnection);
}

void QtScheduler::runOnTaskThread(std::function<void()> work) {
    taskThreads_.start(std::move(work));
}

std::unique_ptr<RepeatingTimer> QtScheduler::startTimer(std::chrono::milliseconds interval,
                                                        std::function<void()> fire) {
    return std::make_unique<QtTimer>(interval, std::move(fire));
}

} // namespace vantoro
