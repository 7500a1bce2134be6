// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>
#include <utility>

#include <pipewire/pipewire.h>

namespace vantoro::pipewire {

/// Work that a loop runs soon after a request, once for any number of requests.
class LoopEvent {
public:
    LoopEvent(pw_loop* loop, std::function<void()> work) : loop_(loop), work_(std::move(work)) {
        source_ = pw_loop_add_event(
            loop_, [](void* data, std::uint64_t) { static_cast<LoopEvent*>(data)->work_(); }, this);
    }

    LoopEvent(const LoopEvent&) = delete;
    LoopEvent& operator=(const LoopEvent&) = delete;

    ~LoopEvent() { pw_loop_destroy_source(loop_, source_); }

    void request() { pw_loop_signal_event(loop_, source_); }

private:
    pw_loop* loop_;
    std::function<void()> work_;
    spa_source* source_ = nullptr;
};

/// Work that a loop runs periodically.
class LoopTimer {
public:
    LoopTimer(pw_loop* loop, std::function<void()> work) : loop_(loop), work_(std::move(work)) {
        source_ = pw_loop_add_timer(
            loop_, [](void* data, std::uint64_t) { static_cast<LoopTimer*>(data)->work_(); }, this);
    }

    LoopTimer(const LoopTimer&) = delete;
    LoopTimer& operator=(const LoopTimer&) = delete;

    ~LoopTimer() { pw_loop_destroy_source(loop_, source_); }

    void setInterval(std::chrono::milliseconds interval) {
        timespec time{.tv_sec = interval.count() / 1000,
                      .tv_nsec = interval.count() % 1000 * 1'000'000};
        pw_loop_update_timer(loop_, source_, &time, &time, false);
    }

private:
    pw_loop* loop_;
    std::function<void()> work_;
    spa_source* source_ = nullptr;
};

} // namespace vantoro::pipewire
