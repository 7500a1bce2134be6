// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace vantoro {

/// A thread that runs work items one by one, in the order queued.
///
/// `async`, `sync` and `addSource` may be called on any thread, including the queue's own.
/// Destruction (not on the queue's thread) waits for the running item and drops the rest.
class SerialQueue {
public:
    /// A reusable work item that a real-time thread can trigger.
    class Source {
    public:
        /// Makes the handler run soon, once for all calls before it starts. Real-time safe: neither
        /// locks, allocates nor throws; at most wakes the queue.
        void signal() noexcept;

    private:
        friend class SerialQueue;
        Source(SerialQueue& queue, std::function<void()> handler);

        SerialQueue& queue_;
        std::function<void()> handler_;
        std::atomic<bool> pending_{false};
    };

    /// Removes its source when released; the handler does not run afterwards. Release it on any
    /// thread, even in the handler. Must not outlive the queue.
    using SourceHandle = std::shared_ptr<Source>;

    explicit SerialQueue(std::string label);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue();

    const std::string& label() const noexcept { return label_; }

    bool isCurrent() const noexcept { return std::this_thread::get_id() == thread_.get_id(); }

    /// Work must not throw.
    void async(std::function<void()> work);

    /// Runs the work after all queued before it; at once on the queue's own thread. Returns its
    /// result or throws its exception.
    template <class Work>
    auto sync(Work work) -> std::invoke_result_t<Work> {
        if (isCurrent()) {
            return work();
        }
        using Task = std::packaged_task<std::invoke_result_t<Work>()>;
        auto task = std::make_shared<Task>(std::move(work));
        auto result = task->get_future();
        async([task] { (*task)(); });
        return result.get();
    }

    SourceHandle addSource(std::function<void()> handler);

private:
    void run(const std::stop_token& stop);
    bool runPendingWork();
    void wake() noexcept;

    const std::string label_;
    std::mutex mutex_; // guards work_; held for a push or swap only
    std::deque<std::function<void()>> work_;
    std::vector<std::shared_ptr<Source>> sources_; // queue thread only
    std::atomic<int> wakes_{0};                    // counts calls of wake(), so that none is missed
    std::jthread thread_;                          // last: it uses the above
};

} // namespace vantoro
