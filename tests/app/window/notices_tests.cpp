// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/notices.h"

#include <optional>
#include <string>
#include <vector>

#include <QtCore/QCoreApplication>

#include "tests/app/window/fake_notifications.h"
#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;

class NoticesTest : public ViewModelTest {
protected:
    FakeNotifications notifications;
    bool isInFront = false;
    std::vector<std::string> windowsShown; ///< the token of each call
    std::optional<Notices> notices;

    void begin() {
        launchAndSettle();
        notices.emplace(Notices::Surroundings{
            .model = *model,
            .notifications = notifications,
            .opener = opener,
            .preferences = preferences,
            .isWindowInFront = [this] { return isInFront; },
            .showMainWindow = [this](const auto& token) { windowsShown.push_back(token); }});
    }

    void TearDown() override { notices.reset(); }

    void settle() {
        for (int round = 0; round < 3; ++round) {
            scheduler.settle();
            QCoreApplication::processEvents();
        }
    }

    void makeRecording() {
        record();
        model->stopRecording();
        settle();
    }

    void setCondition(AudioLevelSource source, SourceCondition condition) {
        recorder.recorder->onSourceCondition(source, condition);
        settle();
    }

    /// The only notification.
    const Notification& shown() {
        EXPECT_EQ(notifications.shown.size(), 1U);
        return notifications.shown.begin()->second;
    }
};

TEST_F(NoticesTest, savedRecordingIsTold) {
    begin();
    makeRecording();
    EXPECT_EQ(shown().title, "Recording saved");
    EXPECT_EQ(shown().text, "recorded.m4a");
}

TEST_F(NoticesTest, nothingIsToldWhileTheWindowIsInFront) {
    begin();
    isInFront = true;
    makeRecording();
    record();
    setCondition(AudioLevelSource::microphone, SourceCondition::silent);
    interruptCapture();
    settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(notifications.shows, 0);
}

TEST_F(NoticesTest, recordingThatEndedByItselfIsToldWithTheReason) {
    begin();
    record();
    interruptCapture();
    settle();
    EXPECT_EQ(shown().title, "The recording ended by itself");
    EXPECT_EQ(shown().text, message());
    EXPECT_TRUE(shown().isImportant);
}

TEST_F(NoticesTest, failureIsTold) {
    begin();
    record();
    recorder.stopError = failure("disk full");
    model->stopRecording();
    settle();
    EXPECT_EQ(shown().title, "Needs attention");
    EXPECT_TRUE(shown().text.starts_with("disk full")) << shown().text;
}

TEST_F(NoticesTest, salvagedRecordingIsTold) {
    begin();
    recorder.salvaged = {"/music/a.m4a", "/music/b.m4a"};
    power.wake();
    settle();
    EXPECT_EQ(shown().title, "Recording recovered");
    EXPECT_EQ(shown().text, "2 previously interrupted recordings were recovered and saved.");
}

TEST_F(NoticesTest, outcomeThatIsOverIsNotTold) {
    begin();
    record();
    model->stopRecording();
    scheduler.settle();
    model->startRecording();
    settle();
    EXPECT_EQ(notifications.shows, 0);
}

TEST_F(NoticesTest, buttonsOpenTheRecordingThatTheyBelongTo) {
    begin();
    makeRecording();
    const auto first = notifications.shown.begin()->first;
    recorder.recording = "/music/later.m4a";
    makeRecording();
    EXPECT_EQ(notifications.shown.size(), 2U);
    notifications.chosen(first, "play", "");
    notifications.chosen(notifications.shown.rbegin()->first, "reveal", "");
    EXPECT_EQ(opener.calls,
              (std::vector<std::string>{"open /music/recorded.m4a", "reveal /music/later.m4a"}));
    EXPECT_TRUE(windowsShown.empty());
}

TEST_F(NoticesTest, clickShowsTheWindowWhichTakesEverythingBack) {
    begin();
    makeRecording();
    notifications.chosen(notifications.shown.begin()->first, "", "token");
    EXPECT_EQ(windowsShown, std::vector<std::string>{"token"});
    notices->windowCameToFront();
    EXPECT_TRUE(notifications.shown.empty());
    EXPECT_TRUE(opener.calls.empty());
}

TEST_F(NoticesTest, mutedMicrophoneIsToldAfterTenSecondsAndTakenBackWhenItIsNot) {
    begin();
    record();
    setCondition(AudioLevelSource::microphone, SourceCondition::muted);
    scheduler.advance(9s);
    EXPECT_EQ(notifications.shows, 0);
    scheduler.advance(1s);
    EXPECT_EQ(shown().title, "Microphone: muted");
    scheduler.advance(60s);
    EXPECT_EQ(notifications.shows, 1);
    setCondition(AudioLevelSource::microphone, SourceCondition::delivering);
    EXPECT_TRUE(notifications.shown.empty());
}

TEST_F(NoticesTest, silenceIsToldInEachRecording) {
    begin();
    for (const int recordings : {1, 2}) {
        record();
        setCondition(AudioLevelSource::systemAudio, SourceCondition::silent);
        EXPECT_EQ(shown().title, "System Audio: only silence");
        isInFront = true;
        model->stopRecording();
        settle();
        isInFront = false;
        EXPECT_TRUE(notifications.shown.empty()); // the recording is over
        EXPECT_EQ(notifications.shows, recordings);
    }
}

TEST_F(NoticesTest, nothingIsToldAfterItsEnd) {
    begin();
    record();
    model->stopRecording();
    scheduler.settle();
    notices.reset();
    settle();
    EXPECT_EQ(notifications.shows, 0);
    EXPECT_FALSE(notifications.chosen);
}

} // namespace
} // namespace vantoro::testing
