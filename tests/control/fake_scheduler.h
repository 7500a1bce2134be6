// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "control/ports/scheduler.h"

namespace vantoro::testing {

/// Runs nothing by itself: the test says when, and time passes only as the test lets it.
class FakeScheduler final : public Scheduler {
public:
    void runOnMainThread(std::function<void()> work) override { main_.push_back(std::move(work)); }

    void runOnTaskThread(std::function<void()> work) override { tasks_.push_back(std::move(work)); }

    std::unique_ptr<RepeatingTimer> startTimer(std::chrono::milliseconds interval,
                                               std::function<void()> fire) override {
        return std::make_unique<Timer>(timers_, now_, interval, std::move(fire));
    }

    /// What waits for the main thread, until nothing does.
    void runMain() {
        while (!main_.empty()) {
            takeFrom(main_, 0)();
        }
    }

    /// One piece of the work that waits for a task thread, and then the main thread's.
    void runTask(std::size_t index = 0) {
        takeFrom(tasks_, index)();
        runMain();
    }

    /// Until nothing waits anywhere.
    void settle() {
        runMain();
        while (!tasks_.empty()) {
            runTask();
        }
    }

    /// Lets time pass, with what it brings about.
    void advance(std::chrono::milliseconds duration) {
        const auto end = now_ + duration;
        for (;;) {
            const auto next = std::ranges::min_element(
                timers_, {}, [](const Timer* timer) { return timer->due; });
            if (next == timers_.end() || (*next)->due > end) {
                break;
            }
            now_ = (*next)->due;
            (*next)->due += (*next)->interval;
            const auto fire = (*next)->fire; // kept: it may end its timer
            fire();
            runMain();
        }
        now_ = end;
    }

    std::size_t waitingTasks() const { return tasks_.size(); }

    std::size_t timers() const { return timers_.size(); }

private:
    using Queue = std::deque<std::function<void()>>;

    struct Timer final : RepeatingTimer {
        Timer(std::vector<Timer*>& timers, std::chrono::milliseconds now,
              std::chrono::milliseconds every, std::function<void()> what)
            : all(timers), interval(every), due(now + every), fire(std::move(what)) {
            all.push_back(this);
        }

        Timer(const Timer&) = delete;
        Timer& operator=(const Timer&) = delete;

        ~Timer() override { std::erase(all, this); }

        std::vector<Timer*>& all;
        std::chrono::milliseconds interval;
        std::chrono::milliseconds due;
        std::function<void()> fire;
    };

    static std::function<void()> takeFrom(Queue& queue, std::size_t index) {
        auto work = std::move(queue.at(index));
        queue.erase(queue.begin() + static_cast<std::ptrdiff_t>(index));
        return work;
    }

    Queue main_;
    Queue tasks_;
    std::vector<Timer*> timers_;
    std::chrono::milliseconds now_{0};
};

} // namespace vantoro::testing
