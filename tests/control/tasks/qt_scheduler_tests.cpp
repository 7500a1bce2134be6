// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/tasks/qt_scheduler.h"

#include <atomic>
#include <semaphore>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/control/event_loop.h"

namespace vantoro::testing {
namespace {

class QtSchedulerTest : public ::testing::Test {
protected:
    EventLoop loop;
    QtScheduler scheduler;
    const std::thread::id mainThread = std::this_thread::get_id();
};

TEST_F(QtSchedulerTest, runsOnTheMainThreadAfterTheCallInOrder) {
    std::vector<int> ran;
    for (int i = 0; i < 3; ++i) {
        scheduler.runOnMainThread([&ran, i] { ran.push_back(i); });
    }
    EXPECT_EQ(ran, std::vector<int>());
    EXPECT_TRUE(EventLoop::runUntil([&] { return ran.size() == 3; }));
    EXPECT_EQ(ran, (std::vector<int>{0, 1, 2}));
}

TEST_F(QtSchedulerTest, bringsWorkFromATaskThreadToTheMainThread) {
    std::thread::id task;
    std::thread::id back;
    scheduler.runOnTaskThread([&] {
        task = std::this_thread::get_id();
        scheduler.runOnMainThread([&] { back = std::this_thread::get_id(); });
    });
    EXPECT_TRUE(EventLoop::runUntil([&] { return back != std::thread::id(); }));
    EXPECT_NE(task, mainThread);
    EXPECT_EQ(back, mainThread);
}

TEST_F(QtSchedulerTest, letsNoWorkWaitForOtherWork) {
    constexpr std::ptrdiff_t many = 40;
    std::counting_semaphore<many> release(0);
    QtScheduler other; // destroyed first, and waits for its work
    for (std::ptrdiff_t i = 0; i < many; ++i) {
        other.runOnTaskThread([&] { release.acquire(); });
    }
    bool ran = false;
    other.runOnTaskThread([&] { other.runOnMainThread([&] { ran = true; }); });
    EXPECT_TRUE(EventLoop::runUntil([&] { return ran; }));
    release.release(many);
}

TEST_F(QtSchedulerTest, deferredTasksStartOnRequest) {
    std::string begun; // written on the main thread
    const auto tell = [&](char task) {
        scheduler.runOnMainThread([&begun, task] { begun += task; });
    };
    QtScheduler waiting(QtScheduler::TaskStart::deferred);
    waiting.runOnTaskThread([&] { tell('a'); });
    scheduler.runOnTaskThread([&] { tell('b'); });
    ASSERT_TRUE(EventLoop::runUntil([&] { return !begun.empty(); }));
    EXPECT_EQ(begun, "b");
    waiting.startTasks();
    EXPECT_TRUE(EventLoop::runUntil([&] { return begun == "ba"; }));
    waiting.runOnTaskThread([&] { tell('c'); });
    EXPECT_TRUE(EventLoop::runUntil([&] { return begun == "bac"; }));
}

TEST_F(QtSchedulerTest, deferredTasksNeverRequestedAreDropped) {
    auto held = std::make_shared<int>();
    {
        QtScheduler waiting(QtScheduler::TaskStart::deferred);
        waiting.runOnTaskThread([held] { ADD_FAILURE(); });
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(QtSchedulerTest, freesATaskWhenItEnds) {
    std::binary_semaphore gone(0);
    auto held = std::shared_ptr<int>(new int, [&](int* value) {
        delete value;
        gone.release();
    });
    QtScheduler other;
    other.runOnTaskThread([held] { EXPECT_NE(held, nullptr); });
    held.reset();
    EXPECT_TRUE(gone.try_acquire_for(std::chrono::seconds(20)));
}

TEST_F(QtSchedulerTest, waitsForItsTasksWhenItEnds) {
    std::atomic<bool> done = false;
    std::binary_semaphore begun(0);
    {
        QtScheduler other;
        other.runOnTaskThread([&] {
            begun.release();
            std::this_thread::yield();
            done = true;
        });
        begun.acquire();
    }
    EXPECT_TRUE(done);
}

TEST_F(QtSchedulerTest, firesItsTimersOnTheMainThreadUntilTheyEnd) {
    int fired = 0;
    std::unique_ptr<RepeatingTimer> timer;
    timer = scheduler.startTimer(std::chrono::milliseconds(1), [&] {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        if (++fired == 3) {
            timer.reset();
        }
    });
    EXPECT_EQ(fired, 0);
    EXPECT_TRUE(EventLoop::runUntil([&] { return fired == 3; }));
    // A second timer keeps firing, to prove that the destroyed one is silent.
    int others = 0;
    const auto other = scheduler.startTimer(std::chrono::milliseconds(1), [&] { ++others; });
    EXPECT_TRUE(EventLoop::runUntil([&] { return others == 5; }));
    EXPECT_EQ(fired, 3);
}

} // namespace
} // namespace vantoro::testing
