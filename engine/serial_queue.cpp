// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/serial_queue.h"

#include <algorithm>

namespace vantoro {

SerialQueue::Source::Source(SerialQueue& queue, std::function<void()> handler)
    : queue_(queue), handler_(std::move(handler)) {}

void SerialQueue::Source::signal() noexcept {
    if (!pending_.exchange(true, std::memory_order_acq_rel)) {
        queue_.wake();
    }
}

SerialQueue::SerialQueue(std::string label)
    : label_(std::move(label)), thread_([this](const std::stop_token& stop) { run(stop); }) {}

SerialQueue::~SerialQueue() {
    thread_.request_stop();
    wake();
}

void SerialQueue::async(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
    }
    wake();
}

SerialQueue::SourceHandle SerialQueue::addSource(std::function<void()> handler) {
    std::shared_ptr<Source> source(new Source(*this, std::move(handler)));
    async([this, source] { sources_.push_back(source); });
    return {source.get(),
            [this, source](Source* /*same*/) { sync([&] { std::erase(sources_, source); }); }};
}

void SerialQueue::wake() noexcept {
    wakes_.fetch_add(1, std::memory_order_acq_rel);
    wakes_.notify_one();
}

void SerialQueue::run(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        const int seen = wakes_.load(std::memory_order_acquire);
        if (!runPendingWork() && !stop.stop_requested()) {
            wakes_.wait(seen, std::memory_order_acquire);
        }
    }
}

bool SerialQueue::runPendingWork() {
    bool ran = false;
    // Iterate over a copy: a handler may remove any source, including its own.
    for (const auto& source : std::vector(sources_)) {
        if (source->pending_.exchange(false, std::memory_order_acq_rel) &&
            std::ranges::find(sources_, source) != sources_.end()) {
            source->handler_();
            ran = true;
        }
    }
    std::function<void()> next;
    {
        const std::lock_guard lock(mutex_);
        if (!work_.empty()) {
            next = std::move(work_.front());
            work_.pop_front();
        }
    }
    if (next) {
        next();
        ran = true;
    }
    return ran;
}

} // namespace vantoro
