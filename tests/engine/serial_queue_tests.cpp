// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/serial_queue.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

constexpr auto deadline = std::chrono::seconds(10);

TEST(SerialQueue, runsWorkInTheOrderGiven) {
    SerialQueue queue("test");
    std::vector<int> order;
    for (int i = 0; i < 100; ++i) {
        queue.async([&order, i] { order.push_back(i); });
    }
    queue.sync([] {});
    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(SerialQueue, syncReturnsAndThrowsWhatItsWorkDoes) {
    SerialQueue queue("test");
    EXPECT_EQ(queue.sync([] { return 42; }), 42);
    EXPECT_THROW(queue.sync([] { throw std::runtime_error("no"); }), std::runtime_error);
}

TEST(SerialQueue, syncOnTheQueueItselfRunsAtOnce) {
    SerialQueue queue("test");
    EXPECT_EQ(queue.sync([&] { return queue.sync([&] { return queue.isCurrent(); }); }), true);
    EXPECT_FALSE(queue.isCurrent());
}

TEST(SerialQueue, workQueuedByWorkRunsToo) {
    SerialQueue queue("test");
    std::promise<void> ran;
    queue.async([&] { queue.async([&] { ran.set_value(); }); });
    EXPECT_EQ(ran.get_future().wait_for(deadline), std::future_status::ready);
}

TEST(SerialQueue, destructionWaitsForTheRunningWorkAndDropsTheRest) {
    std::atomic<bool> working{false};
    {
        std::promise<void> begun;
        std::function<void()> endless;
        SerialQueue queue("test");
        // Queues itself again each time: draining the queue would never end.
        endless = [&] {
            working = true;
            queue.async(endless);
            working = false;
        };
        queue.async([&] { begun.set_value(); });
        queue.async(endless);
        begun.get_future().wait();
    }
    EXPECT_FALSE(working);
}

TEST(SerialQueue, signalledSourceRunsOnTheQueue) {
    SerialQueue queue("test");
    std::promise<bool> onQueue;
    const auto source = queue.addSource([&] { onQueue.set_value(queue.isCurrent()); });
    source->signal();
    auto result = onQueue.get_future();
    ASSERT_EQ(result.wait_for(deadline), std::future_status::ready);
    EXPECT_TRUE(result.get());
}

TEST(SerialQueue, signalsBeforeTheHandlerBeginsAreOneRun) {
    SerialQueue queue("test");
    int runs = 0;
    std::promise<void> gate;
    const auto source = queue.addSource([&] { ++runs; });
    queue.async([&] { gate.get_future().wait(); });
    for (int i = 0; i < 50; ++i) {
        source->signal();
    }
    gate.set_value();
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_LE(runs, 2);
    EXPECT_GE(runs, 1);
}

TEST(SerialQueue, noSignalIsLost) {
    SerialQueue queue("test");
    std::atomic<int> seen{0};
    std::atomic<int> given{0};
    const auto source = queue.addSource([&] { seen.store(given.load()); });
    for (int i = 1; i <= 20000; ++i) {
        given.store(i);
        source->signal();
    }
    const auto end = std::chrono::steady_clock::now() + deadline;
    while (seen.load() != 20000 && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    EXPECT_EQ(seen.load(), 20000);
}

TEST(SerialQueue, removedSourceNoLongerRuns) {
    SerialQueue queue("test");
    int runs = 0;
    {
        const auto source = queue.addSource([&] { ++runs; });
        source->signal();
        queue.sync([] {});
    }
    const int before = runs;
    queue.sync([] {});
    EXPECT_EQ(runs, before);
}

TEST(SerialQueue, sourceDoesNotRunBeforeItIsSignalled) {
    SerialQueue queue("test");
    int runs = 0;
    const auto source = queue.addSource([&] { ++runs; });
    queue.sync([] {});
    queue.sync([] {});
    EXPECT_EQ(runs, 0);
}

TEST(SerialQueue, signalWakesAQueueThatSleeps) {
    SerialQueue queue("test");
    std::atomic<int> runs{0};
    const auto source = queue.addSource([&] { ++runs; });
    for (int round = 1; round <= 200; ++round) {
        queue.sync([] {});
        for (int i = 0; i < 50; ++i) {
            std::this_thread::yield(); // while the queue finds nothing to do
        }
        source->signal();
        const auto end = std::chrono::steady_clock::now() + deadline;
        while (runs < round && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        ASSERT_EQ(runs, round);
    }
}

TEST(SerialQueue, removedSourceLetsGoOfWhatItsHandlerHolds) {
    SerialQueue queue("test");
    const auto held = std::make_shared<int>();
    {
        auto source = queue.addSource([held] {});
        queue.sync([] {});
        EXPECT_GT(held.use_count(), 1);
        source = queue.addSource([] {});
        queue.sync([] {});
        EXPECT_EQ(held.use_count(), 1) << "replaced by another";
        source = queue.addSource([held] {});
        queue.sync([] {});
    }
    queue.sync([] {});
    EXPECT_EQ(held.use_count(), 1);
}

TEST(SerialQueue, sourceMayRemoveItselfInItsHandler) {
    SerialQueue queue("test");
    std::promise<void> removed;
    SerialQueue::SourceHandle source;
    source = queue.addSource([&] {
        source = {};
        removed.set_value();
    });
    source->signal();
    EXPECT_EQ(removed.get_future().wait_for(deadline), std::future_status::ready);
}

} // namespace
} // namespace vantoro::testing
