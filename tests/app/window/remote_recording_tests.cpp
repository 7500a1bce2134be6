// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/remote_recording.h"

#include <optional>
#include <string>
#include <vector>

#include <QtCore/QCoreApplication>

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

class RemoteRecordingTest : public ViewModelTest {
protected:
    std::optional<RemoteRecording> remote;
    std::vector<std::string> shown; ///< the token of each call

    void begin(Case state = Case::idle) {
        lead(state);
        remote.emplace(*model, [this](const std::string& token) { shown.push_back(token); });
    }

    void settle() {
        for (int round = 0; round < 3; ++round) {
            scheduler.settle();
            QCoreApplication::processEvents();
        }
    }

    void TearDown() override { remote.reset(); }
};

TEST_F(RemoteRecordingTest, startsAndStopsWithoutTheWindow) {
    begin();
    remote->start("leave");
    settle();
    EXPECT_EQ(state(), Case::recording);
    remote->stop("leave");
    settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(recorder.calls.back(), "stop");
    EXPECT_TRUE(shown.empty());
}

TEST_F(RemoteRecordingTest, startsNothingWhileARecordingIsUnderWay) {
    for (const auto busy : {Case::preparing, Case::recording, Case::processing}) {
        begin(busy);
        const auto starts = recorder.options.size();
        remote->start("leave");
        EXPECT_EQ(state(), busy);
        settle();
        EXPECT_LE(recorder.options.size(), std::max<std::size_t>(starts, 1));
        EXPECT_TRUE(shown.empty());
        remote.reset();
        recorder.options.clear();
    }
}

TEST_F(RemoteRecordingTest, stopsNothingWhereNothingIsRecorded) {
    for (const auto state : {Case::idle, Case::completed, Case::failed}) {
        begin(state);
        const auto calls = recorder.calls.size();
        remote->stop("leave");
        settle();
        EXPECT_EQ(recorder.calls.size(), calls);
        EXPECT_EQ(this->state(), state);
        EXPECT_TRUE(shown.empty());
        remote.reset();
    }
}

TEST_F(RemoteRecordingTest, stopThatComesBeforeTheRecordingHasBegunIsNotForgotten) {
    begin();
    remote->start("");
    remote->stop("");
    EXPECT_EQ(state(), Case::preparing);
    settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(message(), "(none)");
}

TEST_F(RemoteRecordingTest, failedStartShowsTheWindowWithItsToken) {
    begin();
    recorder.startError = failure("no sound server");
    remote->start("leave");
    EXPECT_TRUE(shown.empty());
    settle();
    EXPECT_EQ(state(), Case::failed);
    EXPECT_EQ(shown, std::vector<std::string>({"leave"}));
}

TEST_F(RemoteRecordingTest, startThatCannotBeShowsTheWindowAtOnce) {
    begin();
    model->setCaptureSystemAudio(false);
    model->setCaptureMicrophone(false);
    remote->start("leave");
    EXPECT_EQ(shown, std::vector<std::string>({"leave"}));
    settle();
    EXPECT_EQ(shown.size(), 1U);
}

TEST_F(RemoteRecordingTest, stopThatFailsShowsTheWindow) {
    begin();
    remote->start("older");
    settle();
    recorder.stopError = failure("disk full");
    remote->stop("newer");
    settle();
    EXPECT_EQ(shown, std::vector<std::string>({"newer"}));
}

TEST_F(RemoteRecordingTest, failureOfALocalStartDoesNotShowTheWindow) {
    begin();
    remote->start("leave");
    settle();
    remote->stop("leave");
    settle();
    recorder.startError = failure("no sound server");
    model->startRecording();
    settle();
    EXPECT_EQ(state(), Case::failed);
    EXPECT_TRUE(shown.empty());
}

} // namespace
} // namespace vantoro::testing
