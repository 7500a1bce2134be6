// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

class TimerTest : public ViewModelTest {
protected:
    TimerTest() { lead(Case::recording); }
};

TEST_F(TimerTest, countsFullSeconds) {
    scheduler.advance(999ms);
    EXPECT_EQ(values().elapsedSeconds, 0);
    scheduler.advance(1ms);
    EXPECT_EQ(values().elapsedSeconds, 1);
    scheduler.advance(2500ms);
    EXPECT_EQ(values().elapsedSeconds, 3);
    EXPECT_EQ(model->formattedElapsedTime(), "00:03");
}

TEST_F(TimerTest, runsWhileRecording) {
    scheduler.advance(30h);
    EXPECT_EQ(state(), Case::recording);
    EXPECT_EQ(model->formattedElapsedTime(), "30:00:00");
}

TEST_F(TimerTest, stopsAtOnceWhenTheRecordingIsStopped) {
    scheduler.advance(7s);
    model->toggleRecording();
    EXPECT_EQ(scheduler.timers(), 0U);
    scheduler.advance(7s);
    EXPECT_EQ(values().elapsedSeconds, 7);
    scheduler.settle();
    scheduler.advance(7s);
    EXPECT_EQ(values().elapsedSeconds, 7);
}

TEST_F(TimerTest, stopsWithTheViewModel) {
    model.reset();
    EXPECT_EQ(scheduler.timers(), 0U);
    scheduler.advance(5s);
}

TEST_F(TimerTest, restartsWithTheNextRecording) {
    scheduler.advance(1700ms);
    model->toggleRecording();
    scheduler.settle();
    record();
    EXPECT_EQ(values().elapsedSeconds, 0);
    scheduler.advance(999ms);
    EXPECT_EQ(values().elapsedSeconds, 0);
    scheduler.advance(1ms);
    EXPECT_EQ(values().elapsedSeconds, 1);
}

TEST_F(ViewModelTest, countsNothingWhileTheRecorderStarts) {
    lead(Case::preparing);
    scheduler.advance(20s);
    scheduler.settle();
    EXPECT_EQ(values().elapsedSeconds, 0);
}

} // namespace
} // namespace vantoro::testing
