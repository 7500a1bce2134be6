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

/// Runs work only when the test says so; time passes only when the test advances it.
class FakeScheduler final : public Scheduler {
public:
    void runOnMainThread(std::function<void()> work) override { main_.push_back(std::move(work)); }

    void runOnTaskThread(std::function<void()> work) override { tasks_.push_back(std::move(work)); }

    std::unique_ptr<RepeatingTimer> startTimer(std::chrono::milliseconds interval,
                                               std::function<void()> fire) override {
        return std::make_unique<Timer>(timers_, now_, interval, std::move(fire));
    }

    /// Runs main-thread work until none is left.
    void runMain() {
        while (!main_.empty()) {
            takeFrom(main_, 0)();
        }
    }

    /// Runs one pending task, then the main-thread work.
    void runTask(std::size_t index = 0) {
        takeFrom(tasks_, index)();
        runMain();
    }

    /// Runs everything until no work is left.
    void settle() {
        runMain();
        while (!tasks_.empty()) {
            runTask();
        }
    }

    /// Advances the time and fires the timers on the way.
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
            const auto fire = (*next)->fire; // a copy, because it may destroy its timer
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
