// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include <pipewire/pipewire.h>

namespace vantoro::pipewire {

/// Work on a loop.
class LoopSource {
public:
    LoopSource(const LoopSource&) = delete;
    LoopSource& operator=(const LoopSource&) = delete;

protected:
    LoopSource(pw_loop* loop, std::function<void()> work) : loop_(loop), work_(std::move(work)) {}

    ~LoopSource() { pw_loop_destroy_source(loop_, source_); }

    static void run(void* source, std::uint64_t /*count*/) {
        static_cast<LoopSource*>(source)->work_();
    }

    pw_loop* loop_;
    std::function<void()> work_;
    spa_source* source_ = nullptr;
};

/// Work that a loop runs soon after a request, once for any number of requests.
class LoopEvent : public LoopSource {
public:
    LoopEvent(pw_loop* loop, std::function<void()> work) : LoopSource(loop, std::move(work)) {
        source_ = pw_loop_add_event(loop, run, static_cast<LoopSource*>(this));
    }

    void request() { pw_loop_signal_event(loop_, source_); }
};

/// Work that a loop runs periodically.
class LoopTimer : public LoopSource {
public:
    LoopTimer(pw_loop* loop, std::function<void()> work) : LoopSource(loop, std::move(work)) {
        source_ = pw_loop_add_timer(loop, run, static_cast<LoopSource*>(this));
    }

    void setInterval(std::chrono::milliseconds interval) {
        timespec time{.tv_sec = interval.count() / 1000,
                      .tv_nsec = interval.count() % 1000 * 1'000'000};
        pw_loop_update_timer(loop_, source_, &time, &time, false);
    }
};

} // namespace vantoro::pipewire
