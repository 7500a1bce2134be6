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

/// A thread that runs one piece of work after another, in the order in which it was given.
///
/// `async`, `sync` and `addSource` may be called on any thread, the queue's own included. When the
/// queue is destroyed (not on its own thread) the work in progress is waited for and the rest
/// dropped.
class SerialQueue {
public:
    /// A standing piece of work that a real-time thread can ask for.
    class Source {
    public:
        /// Has the handler run soon, once for any number of calls before it begins. Safe in a
        /// real-time thread: neither locks, allocates, nor throws; wakes the queue at most.
        void signal() noexcept;

    private:
        friend class SerialQueue;
        Source(SerialQueue& queue, std::function<void()> handler);

        SerialQueue& queue_;
        std::function<void()> handler_;
        std::atomic<bool> pending_{false};
    };

    /// Takes its source off the queue when destroyed: afterwards the handler neither runs nor will
    /// run. May happen in the handler itself, and on any thread. Must not outlive the queue.
    class SourceHandle {
    public:
        SourceHandle() = default;
        SourceHandle(const SourceHandle&) = delete;
        SourceHandle& operator=(const SourceHandle&) = delete;
        SourceHandle(SourceHandle&& other) noexcept = default;
        SourceHandle& operator=(SourceHandle&& other) noexcept;
        ~SourceHandle();

        void signal() const noexcept { source_->signal(); }

    private:
        friend class SerialQueue;

        explicit SourceHandle(std::shared_ptr<Source> source) : source_(std::move(source)) {}

        void release() noexcept;

        std::shared_ptr<Source> source_;
    };

    explicit SerialQueue(std::string label);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue();

    const std::string& label() const noexcept { return label_; }

    bool isCurrent() const noexcept { return std::this_thread::get_id() == thread_.get_id(); }

    /// Work must not throw.
    void async(std::function<void()> work);

    /// Runs the work behind all that was given before, and returns, or throws, what it did. On the
    /// queue's own thread it runs at once.
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
    void removeSource(const std::shared_ptr<Source>& source);

    const std::string label_;
    std::mutex mutex_; // guards work_ alone, and is held for a push or a swap only
    std::deque<std::function<void()>> work_;
    std::vector<std::shared_ptr<Source>> sources_; // touched on the queue's thread only
    std::atomic<int> wakes_{0}; // calls of wake(): none can fall between look and wait
    std::jthread thread_;       // last: it uses the above
};

} // namespace vantoro
