// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

const Recordings three{"/music/first.m4a", "/music/second.m4a", "/music/third.m4a"};

TEST_F(ViewModelTest, salvagesTheRecordingFolderAtLaunch) {
    preferences.values[Preference::outputDirectory] = "/recordings";
    recorder.salvaged = three;
    launch();
    EXPECT_EQ(state(), Case::idle);
    scheduler.settle();
    EXPECT_EQ(recorder.foldersSought, Recordings{"/recordings"});
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(lastRecording(), "/music/third.m4a");
    EXPECT_EQ(message(), "3 previously interrupted recordings were recovered and saved.");
}

TEST_F(ViewModelTest, saysThatOneRecordingWasSalvaged) {
    recorder.salvaged = {"/music/only.m4a"};
    launchAndSettle();
    EXPECT_EQ(message(), "A previously interrupted recording was recovered and saved.");
}

TEST_F(ViewModelTest, reportsDamagedRecordingsAndWhereTheOriginalsAre) {
    recorder.salvaged = {"/music/only.m4a"};
    recorder.keptOriginals = {"/music/only.incomplete.mov"};
    launchAndSettle();
    EXPECT_EQ(message(), "A previously interrupted recording was recovered and saved. Part of it "
                         "could not be read. The damaged original was kept in the recording folder "
                         "as only.incomplete.mov.");
    EXPECT_EQ(lastRecording(), "/music/only.m4a");
}

TEST_F(ViewModelTest, reportsTheEndOfEverySalvage) {
    launch();
    int ended = 0;
    QObject::connect(model.get(), &RecordingViewModel::salvageEnded, [&] { ++ended; });
    scheduler.settle();
    EXPECT_EQ(ended, 1);
    recorder.salvaged = {"/music/salvaged.m4a"};
    power.wake();
    scheduler.settle();
    EXPECT_EQ(ended, 2);
}

TEST_F(ViewModelTest, forgetsAMessageThatTheUserHasRead) {
    lead(Case::failed);
    EXPECT_NE(message(), "(none)");
    model->dismissMessage();
    EXPECT_EQ(message(), "(none)");
}

TEST_F(ViewModelTest, showsNothingAfterAnEmptySalvage) {
    launchAndSettle();
    EXPECT_EQ(recorder.calls, std::vector<std::string>{"salvage"});
    EXPECT_EQ(state(), Case::idle);
    EXPECT_EQ(message(), "(none)");
}

TEST_F(ViewModelTest, cancelsASalvageAtAStartAndDropsItsResult) {
    recorder.salvaged = three;
    launch();
    recorder.duringSalvage = [this] { model->startRecording(); };
    scheduler.runTask();
    EXPECT_EQ(recorder.stopRequested, std::vector<bool>{true});
    EXPECT_EQ(state(), Case::preparing);
    EXPECT_EQ(lastRecording(), "(none)");
    EXPECT_EQ(message(), "(none)");
}

TEST_F(ViewModelTest, doesNotLetAStartWaitForASalvage) {
    launch();
    model->startRecording();
    EXPECT_EQ(scheduler.waitingTasks(), 2U);
    scheduler.runTask(1);
    EXPECT_EQ(state(), Case::recording);
}

TEST_F(ViewModelTest, dropsACancelledSalvageEvenIfTheStartFailed) {
    recorder.salvaged = three;
    recorder.startError = failure("broken");
    launch();
    model->startRecording();
    scheduler.runTask(1);
    ASSERT_EQ(state(), Case::failed);
    scheduler.runTask();
    EXPECT_EQ(state(), Case::failed);
    EXPECT_EQ(message(), "broken");
    scheduler.settle(); // including the failed start's own salvage
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(recorder.stopRequested, (std::vector<bool>{true, false}));
}

TEST_F(ViewModelTest, startsASalvageOnlyAfterTheCancelledOneHasEnded) {
    launch();
    power.wake();
    power.wake();
    EXPECT_EQ(scheduler.waitingTasks(), 2U); // the survey is the other one
    recorder.duringSalvage = [this] { EXPECT_EQ(scheduler.waitingTasks(), 1U); };
    scheduler.runTask();
    recorder.duringSalvage = nullptr;
    EXPECT_EQ(recorder.stopRequested, (std::vector<bool>{true}));
    scheduler.settle();
    EXPECT_EQ(recorder.stopRequested, (std::vector<bool>{true, false}));
}

TEST_F(ViewModelTest, doesNotStartASalvageWhileRecording) {
    launch();
    power.wake();
    model->startRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.calls, (std::vector<std::string>{"salvage", "start"}));
    EXPECT_EQ(state(), Case::recording);
}

TEST_F(ViewModelTest, resumesAnInterruptedSalvageOnceTheRecordingIsSaved) {
    launch();
    model->startRecording();
    scheduler.settle();
    ASSERT_EQ(recorder.stopRequested, (std::vector<bool>{true}));
    recorder.salvaged = three;
    model->stopRecording();
    scheduler.runMain();
    scheduler.runTask();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(lastRecording(), "/music/recorded.m4a");
    scheduler.settle();
    EXPECT_EQ(recorder.calls, (std::vector<std::string>{"salvage", "start", "stop", "salvage"}));
    EXPECT_EQ(recorder.stopRequested, (std::vector<bool>{true, false}));
    EXPECT_EQ(lastRecording(), "/music/third.m4a");
}

TEST_F(ViewModelTest, resumesASalvageThatHadNotStarted) {
    launch();
    power.wake();
    scheduler.runTask(1); // the survey
    model->startRecording();
    scheduler.settle();
    model->stopRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.calls, (std::vector<std::string>{"salvage", "start", "stop", "salvage"}));
}

TEST_F(ViewModelTest, resumesASalvageOnlyOnce) {
    launch();
    for (int time = 0; time < 2; ++time) {
        model->startRecording();
        scheduler.settle();
        model->stopRecording();
        scheduler.settle();
    }
    EXPECT_EQ(recorder.calls,
              (std::vector<std::string>{"salvage", "start", "stop", "salvage", "start", "stop"}));
}

TEST_F(ViewModelTest, salvagesOnlyOnceAfterAFailureThatInterruptedASalvage) {
    recorder.startError = failure("broken");
    launch();
    model->startRecording();
    scheduler.settle();
    recorder.startError = nullptr;
    model->startRecording();
    scheduler.settle();
    model->stopRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.calls,
              (std::vector<std::string>{"salvage", "start", "salvage", "start", "stop"}));
}

TEST_F(ViewModelTest, resumesASalvageInTheFolderChosenMeanwhile) {
    launch();
    model->startRecording();
    scheduler.settle();
    model->chooseOutputDirectory();
    folderDialog.answer("/elsewhere");
    model->stopRecording();
    scheduler.settle();
    EXPECT_EQ(recorder.foldersSought.back(), "/elsewhere");
}

TEST_F(ViewModelTest, cancelsASalvageWhenItEnds) {
    recorder.salvaged = three;
    launch();
    recorder.duringSalvage = [this] { model.reset(); };
    scheduler.settle();
    EXPECT_EQ(recorder.stopRequested, std::vector<bool>{true});
    EXPECT_FALSE(recorder.recorderLives);
}

TEST_F(ViewModelTest, salvagesAfterAFailedStartWithoutTouchingTheMessageWhenNothingIsFound) {
    lead(Case::failed);
    EXPECT_EQ(recorder.calls, (std::vector<std::string>{"salvage", "start", "salvage"}));
    EXPECT_EQ(message(), "no such luck");
}

} // namespace
} // namespace vantoro::testing
