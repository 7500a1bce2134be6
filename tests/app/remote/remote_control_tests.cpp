// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/remote_control.h"

#include <optional>
#include <string>
#include <vector>

#include <QtCore/QCoreApplication>

#include "platform/desktop/bus/bus_connection.h"
#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

class RemoteControlTest : public ViewModelTest {
protected:
    desktop::BusConnection noBus{""};
    std::optional<desktop::ControlService> service{std::in_place, noBus};
    std::optional<RemoteControl> control;
    std::vector<std::string> answers;

    void begin(Case state = Case::idle) {
        launchAndSettle();
        control.emplace(
            *model, *service,
            [this](const std::string& token) {
                answers.push_back("starting " + token);
                model->startRecording();
            },
            [this](const std::string& token) {
                answers.push_back("stopping " + token);
                model->stopRecording();
            });
        leadFromIdle(state);
        QCoreApplication::processEvents();
        ASSERT_EQ(this->state(), state);
        answers.clear();
    }

    void settle() {
        for (int round = 0; round < 4; ++round) {
            scheduler.settle();
            QCoreApplication::processEvents();
        }
    }

    static std::string described(const desktop::ControlFailure& failure) {
        return failure.error + ": " + failure.text;
    }

    void start() {
        control->start("leave", [this](const auto& result) {
            answers.push_back(result ? "started" : described(result.error()));
        });
    }

    void stop() {
        control->stop("leave", [this](const auto& result) {
            answers.push_back(result ? result->uri + (result->isComplete ? "" : " in part") +
                                           (result->message.empty() ? "" : " " + result->message)
                                     : described(result.error()));
        });
    }

    void expectAnswers(const std::vector<std::string>& expected) {
        EXPECT_EQ(answers, expected);
        answers.clear();
    }

    void TearDown() override { control.reset(); }
};

TEST_F(RemoteControlTest, startIsAnsweredWhenTheRecordingRuns) {
    for (const auto before : {Case::idle, Case::completed, Case::failed}) {
        begin(before);
        start();
        expectAnswers({"starting leave"});
        settle();
        expectAnswers({"started"});
        EXPECT_EQ(state(), Case::recording);
        control.reset();
    }
}

TEST_F(RemoteControlTest, startOfWhatIsStartedStartsNothingMore) {
    begin(Case::preparing);
    start();
    expectAnswers({});
    settle();
    expectAnswers({"started"});
    start();
    expectAnswers({"started"});
    EXPECT_EQ(recorder.options.size(), 1U);
}

TEST_F(RemoteControlTest, startWhileSavingIsRefused) {
    begin(Case::processing);
    start();
    expectAnswers({"com.vantoro.Error.Saving: the last recording is still being saved"});
}

TEST_F(RemoteControlTest, startWithoutASourceIsRefused) {
    begin();
    model->setCaptureSystemAudio(false);
    model->setCaptureMicrophone(false);
    start();
    expectAnswers({"starting leave", "com.vantoro.Error.NoSource: both sources are off"});
    settle();
    expectAnswers({});
}

TEST_F(RemoteControlTest, failedStartIsToldWithItsReason) {
    begin();
    recorder.startError = failure("no sound server");
    start();
    settle();
    expectAnswers({"starting leave", "com.vantoro.Error.Failed: no sound server"});
}

TEST_F(RemoteControlTest, stopIsAnsweredWhenTheRecordingIsSaved) {
    begin(Case::recording);
    stop();
    EXPECT_EQ(state(), Case::processing);
    expectAnswers({"stopping leave"});
    settle();
    expectAnswers({"file:///music/recorded.m4a"});
}

TEST_F(RemoteControlTest, stopBeforeTheRecordingRunsWaitsForBoth) {
    begin();
    start();
    stop();
    EXPECT_EQ(state(), Case::preparing);
    settle();
    expectAnswers({"starting leave", "stopping leave", "started", "file:///music/recorded.m4a"});
}

TEST_F(RemoteControlTest, stopOfWhatIsStoppedAlreadyWaitsWithIt) {
    begin(Case::processing);
    stop();
    stop();
    settle();
    expectAnswers({"stopping leave", "stopping leave", "file:///music/recorded.m4a",
                   "file:///music/recorded.m4a"});
    EXPECT_EQ(recorder.volumes.size(), 1U);
}

TEST_F(RemoteControlTest, stopWhereNothingIsRecordedIsRefused) {
    for (const auto before : {Case::idle, Case::completed, Case::failed}) {
        begin(before);
        stop();
        expectAnswers({"com.vantoro.Error.NotRecording: nothing is being recorded"});
        control.reset();
    }
}

TEST_F(RemoteControlTest, stopOfARecordingThatLostSoundSaysSo) {
    begin(Case::recording);
    recorder.recorder->onSoundLoss({.cause = SoundLoss::Cause::notTakenInTime,
                                    .length = SoundLoss::Duration(3),
                                    .source = std::nullopt,
                                    .reason = nullptr});
    scheduler.runMain();
    stop();
    settle();
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_TRUE(answers[1].starts_with("file:///music/recorded.m4a in part ")) << answers[1];
}

TEST_F(RemoteControlTest, stopThatFailsIsAnsweredWithWhatTheSalvageMakesOfIt) {
    begin(Case::recording);
    recorder.stopError = failure("disk full");
    recorder.salvaged = {"/music/salvaged.m4a"};
    recorder.duringSalvage = [] { QCoreApplication::processEvents(); };
    stop();
    settle();
    expectAnswers(
        {"stopping leave", "file:///music/salvaged.m4a " + L10n(preferences).recovered(1)});
}

TEST_F(RemoteControlTest, stopThatFailsForGoodIsToldAfterTheSalvage) {
    begin(Case::recording);
    recorder.stopError = failure("disk full");
    recorder.keepsRecording = false;
    recorder.duringSalvage = [this] {
        QCoreApplication::processEvents();
        expectAnswers({"stopping leave"});
    };
    stop();
    settle();
    expectAnswers({"com.vantoro.Error.Failed: disk full"});
    EXPECT_EQ(recorder.calls.back(), "salvage");
}

TEST_F(RemoteControlTest, stopThatFailsIsToldAtOnceWhenTheNextRecordingStarts) {
    begin(Case::recording);
    recorder.stopError = failure("disk full");
    recorder.keepsRecording = false;
    stop();
    scheduler.runMain();
    scheduler.runTask(); // the failed stop
    scheduler.runMain();
    ASSERT_EQ(state(), Case::failed);
    model->startRecording();
    expectAnswers({"stopping leave", "com.vantoro.Error.Failed: disk full"});
}

TEST_F(RemoteControlTest, stopOfARecordingThatDoesNotStartIsToldAtOnce) {
    begin(Case::preparing);
    recorder.startError = failure("no sound server");
    recorder.duringSalvage = [this] {
        QCoreApplication::processEvents();
        expectAnswers({"stopping leave", "com.vantoro.Error.Failed: no sound server"});
    };
    stop();
    settle();
    expectAnswers({});
}

TEST_F(RemoteControlTest, statusHoldsWhatTheWindowShows) {
    begin(Case::recording);
    reportLevel(AudioLevelSource::microphone, 0.5F);
    const auto status = control->status();
    EXPECT_EQ(status.state, "recording");
    EXPECT_GT(status.startedAt, 0);
    EXPECT_EQ(status.microphone.level, 0.5);
    EXPECT_EQ(status.folder, "file:///home/somebody/Movies/Vantoro");
    EXPECT_EQ(status.lastRecording, "");
    stop();
    settle();
    EXPECT_EQ(control->status().lastRecording, "file:///music/recorded.m4a");
    EXPECT_EQ(control->status().startedAt, status.startedAt);
}

TEST_F(RemoteControlTest, folderIsThatOfTheRunningRecordingThenTheChosenOne) {
    begin(Case::recording);
    model->chooseOutputDirectory();
    folderDialog.answer("/elsewhere");
    EXPECT_EQ(control->status().folder, "file:///home/somebody/Movies/Vantoro");
    stop();
    settle();
    EXPECT_EQ(control->status().folder, "file:///elsewhere");
}

TEST_F(RemoteControlTest, endOfTheServiceBeforeItIsHarmless) {
    begin(Case::recording);
    service.reset();
    stop();
    settle();
    expectAnswers({"stopping leave", "file:///music/recorded.m4a"});
}

TEST(ControlWordTest, eachStateAndConditionHasItsOwn) {
    const std::pair<Case, const char*> states[] = {
        {Case::idle, "idle"},           {Case::preparing, "preparing"},
        {Case::recording, "recording"}, {Case::processing, "processing"},
        {Case::completed, "completed"}, {Case::failed, "failed"}};
    for (const auto& [state, word] : states) {
        EXPECT_EQ(controlWord(state), word);
    }
    const std::pair<SourceCondition, const char*> conditions[] = {
        {SourceCondition::delivering, "delivering"},
        {SourceCondition::silent, "silent"},
        {SourceCondition::muted, "muted"},
        {SourceCondition::coded, "coded"}};
    for (const auto& [condition, word] : conditions) {
        EXPECT_EQ(controlWord(condition), word);
    }
}

} // namespace
} // namespace vantoro::testing
