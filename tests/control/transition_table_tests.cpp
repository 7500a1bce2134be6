// SPDX-License-Identifier: GPL-3.0-or-later

// Every state combined with every event.

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using enum Case;
using World = ViewModelWorld;

struct Event {
    const char* name;
    void (*happen)(World&);
};

// clang-format off
constexpr Event start{"start", [](World& world) { world.model->startRecording(); }};
constexpr Event startWithoutSource{"start without a source", [](World& world) {
    world.model->setCaptureSystemAudio(false);
    world.model->setCaptureMicrophone(false);
    world.model->startRecording();
}};
constexpr Event toggle{"toggle", [](World& world) { world.model->toggleRecording(); }};
constexpr Event stop{"stop", [](World& world) { world.model->stopRecording(); }};
constexpr Event sleep{"sleep", [](World& world) { world.power.sleep(); }};
constexpr Event interruption{"interruption", [](World& world) { world.interruptCapture(); }};
constexpr Event roomGetsShort{"room gets short", [](World& world) {
    world.reportRoom(RoomAdvice::tell, 7);
}};
constexpr Event roomIsUsedUp{"room is used up", [](World& world) {
    world.reportRoom(RoomAdvice::end);
}};
constexpr Event tenSeconds{"ten seconds", [](World& world) {
    world.scheduler.advance(std::chrono::seconds(10));
}};
constexpr Event level{"level", [](World& world) {
    world.reportLevel(AudioLevelSource::systemAudio, 0.25F);
    world.reportLevel(AudioLevelSource::microphone, 0.75F);
}};
// The recorder answers; the salvage after a failure is still pending.
constexpr Event answered{"the recorder's answer", [](World& world) { world.scheduler.runTask(); }};
constexpr Event answeredWithError{"the recorder's error", [](World& world) {
    world.recorder.startError = failure("broken");
    world.recorder.stopError = failure("broken");
    world.scheduler.runTask();
}};
constexpr Event answeredAfterSleep{"sleep, then the recorder's answer", [](World& world) {
    world.power.sleep();
    world.scheduler.runTask();
}};
constexpr Event answeredAfterRoomWasUsedUp{"room used up, then the recorder's answer",
    [](World& world) {
        world.reportRoom(RoomAdvice::end);
        world.scheduler.runTask();
}};
constexpr Event answeredWithNothingKept{"the recorder's error, and nothing kept", [](World& world) {
    world.recorder.keepsRecording = false;
    world.recorder.stopError = failure("broken");
    world.scheduler.runTask();
}};
constexpr Event answeredAfterStop{"stop, then the recorder's answer", [](World& world) {
    world.model->stopRecording();
    world.scheduler.runTask();
}};
constexpr Event answeredAfterInterruption{"interruption, then the recorder's answer",
    [](World& world) {
        world.interruptCapture();
        world.scheduler.runTask();
}};
// clang-format on

struct Cell {
    Case from;
    Event event;
    Case to;
    const char* message;
    const char* lastRecording;
    std::int64_t elapsed;
    double systemAudioLevel = 0;
    double microphoneLevel = 0;
};

const char* const none = "(none)";
const char* const saved = "/music/recorded.m4a";
const char* const unlucky = "no such luck";

void expectCell(const Cell& cell) {
    World world;
    world.lead(cell.from);
    SCOPED_TRACE(std::to_string(static_cast<int>(cell.from)) + ": " + cell.event.name);
    cell.event.happen(world);
    EXPECT_EQ(world.state(), cell.to);
    EXPECT_EQ(world.message(), cell.message);
    EXPECT_EQ(world.lastRecording(), cell.lastRecording);
    EXPECT_EQ(world.values().elapsedSeconds, cell.elapsed);
    EXPECT_EQ(world.values().systemAudioLevel, cell.systemAudioLevel);
    EXPECT_EQ(world.values().microphoneLevel, cell.microphoneLevel);
    EXPECT_EQ(world.scheduler.timers(), cell.to == recording ? 1U : 0U);
}

TEST(TransitionTableTest, requestsToStart) {
    for (const auto& cell : {
             Cell{idle, start, preparing, none, none, 0},
             Cell{preparing, start, preparing, none, none, 0},
             Cell{recording, start, recording, none, none, 0},
             Cell{processing, start, processing, none, none, 0},
             Cell{completed, start, preparing, none, none, 0},
             Cell{failed, start, preparing, none, none, 0},
             Cell{idle, startWithoutSource, idle, none, none, 0},
             Cell{preparing, startWithoutSource, preparing, none, none, 0},
             Cell{recording, startWithoutSource, recording, none, none, 0},
             Cell{processing, startWithoutSource, processing, none, none, 0},
             Cell{completed, startWithoutSource, completed, none, saved, 0},
             Cell{failed, startWithoutSource, failed, unlucky, none, 0},
         }) {
        expectCell(cell);
    }
}

TEST(TransitionTableTest, theButton) {
    for (const auto& cell : {
             Cell{idle, toggle, preparing, none, none, 0},
             Cell{preparing, toggle, preparing, none, none, 0},
             Cell{recording, toggle, processing, none, none, 0},
             Cell{processing, toggle, processing, none, none, 0},
             Cell{completed, toggle, preparing, none, none, 0},
             Cell{failed, toggle, preparing, none, none, 0},
         }) {
        expectCell(cell);
    }
}

TEST(TransitionTableTest, theSystemAndWhoeverStops) {
    for (const auto& event : {sleep, interruption, stop, roomIsUsedUp}) {
        for (const auto& cell : {
                 Cell{idle, event, idle, none, none, 0},
                 Cell{preparing, event, preparing, none, none, 0},
                 Cell{recording, event, processing, none, none, 0},
                 Cell{processing, event, processing, none, none, 0},
                 Cell{completed, event, completed, none, saved, 0},
                 Cell{failed, event, failed, unlucky, none, 0},
             }) {
            expectCell(cell);
        }
    }
}

TEST(TransitionTableTest, roomThatGetsShort) {
    const char* const sevenMinutes =
        "The disk is nearly full: there is room for about 7 minutes of recording.";
    for (const auto& cell : {
             Cell{idle, roomGetsShort, idle, none, none, 0},
             Cell{preparing, roomGetsShort, preparing, sevenMinutes, none, 0},
             Cell{recording, roomGetsShort, recording, sevenMinutes, none, 0},
             Cell{processing, roomGetsShort, processing, none, none, 0},
             Cell{completed, roomGetsShort, completed, none, saved, 0},
             Cell{failed, roomGetsShort, failed, unlucky, none, 0},
         }) {
        expectCell(cell);
    }
}

TEST(TransitionTableTest, timeAndLevels) {
    for (const auto& cell : {
             Cell{idle, tenSeconds, idle, none, none, 0},
             Cell{preparing, tenSeconds, preparing, none, none, 0},
             Cell{recording, tenSeconds, recording, none, none, 10},
             Cell{processing, tenSeconds, processing, none, none, 0},
             Cell{completed, tenSeconds, completed, none, saved, 0},
             Cell{failed, tenSeconds, failed, unlucky, none, 0},
             Cell{idle, level, idle, none, none, 0},
             Cell{preparing, level, preparing, none, none, 0},
             Cell{recording, level, recording, none, none, 0, 0.25, 0.75},
             Cell{processing, level, processing, none, none, 0},
             Cell{completed, level, completed, none, saved, 0},
             Cell{failed, level, failed, unlucky, none, 0},
         }) {
        expectCell(cell);
    }
}

TEST(TransitionTableTest, theRecordersAnswers) {
    for (const auto& cell : {
             Cell{preparing, answered, recording, none, none, 0},
             Cell{preparing, answeredAfterSleep, processing, none, none, 0},
             Cell{preparing, answeredAfterStop, processing, none, none, 0},
             Cell{preparing, answeredAfterInterruption, processing, none, none, 0},
             Cell{preparing, answeredAfterRoomWasUsedUp, processing, none, none, 0},
             Cell{preparing, answeredWithError, failed, "broken", none, 0},
             Cell{processing, answered, completed, none, saved, 0},
             Cell{processing, answeredAfterSleep, completed, none, saved, 0},
             Cell{processing, answeredAfterInterruption, completed, none, saved, 0},
             Cell{processing, answeredAfterRoomWasUsedUp, completed, none, saved, 0},
             Cell{processing, answeredWithNothingKept, failed, "broken", none, 0},
             Cell{processing, answeredWithError, failed,
                  "broken A recoverable recording checkpoint was kept in the recording folder.",
                  none, 0},
         }) {
        expectCell(cell);
    }
}

/// The result of a salvage that began earlier, or in the state itself.
void expectSalvage(Case from, std::size_t count, Case to, const std::string& message,
                   const std::string& lastRecording) {
    World world;
    world.launch();
    SCOPED_TRACE(static_cast<int>(from));
    world.recorder.salvaged.resize(count, "/music/salvaged.m4a");
    if (from == recording || from == processing) {
        // The launch salvage takes longer than the start.
        world.model->startRecording();
        world.scheduler.runTask(1);
        if (from == processing) {
            world.model->toggleRecording();
            world.scheduler.runMain();
        }
    } else if (from == preparing) {
        world.model->startRecording();
    } else if (from != idle) {
        world.recorder.salvaged.clear();
        world.scheduler.settle();
        world.leadFromIdle(from);
        world.recorder.salvaged.resize(count, "/music/salvaged.m4a");
        world.power.wake();
        world.scheduler.runTask(); // the survey
    }
    ASSERT_EQ(world.state(), from);
    world.scheduler.runTask(0);
    EXPECT_EQ(world.state(), to);
    EXPECT_EQ(world.message(), message);
    EXPECT_EQ(world.lastRecording(), lastRecording);
}

TEST(TransitionTableTest, salvage) {
    const std::string found = "/music/salvaged.m4a";
    const std::string one = "A previously interrupted recording was recovered and saved.";
    const std::string three = "3 previously interrupted recordings were recovered and saved.";
    for (const auto state : {preparing, recording, processing}) {
        expectSalvage(state, 1, state, none, none);
        expectSalvage(state, 3, state, none, none);
    }
    for (const auto state : {idle, completed, failed}) {
        expectSalvage(state, 1, completed, one, found);
        expectSalvage(state, 3, completed, three, found);
    }
    expectSalvage(idle, 0, idle, none, none);
    expectSalvage(completed, 0, completed, none, saved);
    expectSalvage(failed, 0, failed, unlucky, none);
}

} // namespace
} // namespace vantoro::testing
