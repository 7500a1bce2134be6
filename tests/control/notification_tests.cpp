// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using Notices = std::vector<std::pair<char, Property>>; // b: before, a: after
using enum Property;

class NotificationTest : public ViewModelTest {
protected:
    Notices seen;

    void watch() {
        QObject::connect(model.get(), &RecordingProperties::propertyWillChange,
                         [this](Property property) { seen.emplace_back('b', property); });
        QObject::connect(model.get(), &RecordingProperties::propertyChanged,
                         [this](Property property) { seen.emplace_back('a', property); });
    }

    /// Each of them, in this order, once before and once after.
    static Notices each(const std::vector<Property>& properties) {
        Notices all;
        for (const auto property : properties) {
            all.emplace_back('b', property);
            all.emplace_back('a', property);
        }
        return all;
    }
};

TEST_F(NotificationTest, comesOnceBeforeAndOnceAfterWhatTheUserSets) {
    launchAndSettle();
    watch();
    std::vector<double> volumes;
    const auto note = [&](Property) { volumes.push_back(values().systemVolume); };
    QObject::connect(model.get(), &RecordingProperties::propertyWillChange, note);
    QObject::connect(model.get(), &RecordingProperties::propertyChanged, note);
    model->setSystemVolume(1.25);
    EXPECT_EQ(volumes, (std::vector<double>{0.9, 1.25}));
    model->setMicrophoneVolume(0.5);
    model->setCaptureSystemAudio(false);
    model->setCaptureMicrophone(false);
    model->setSelectedMicrophoneID(std::nullopt);
    EXPECT_EQ(seen, each({systemVolume, microphoneVolume, captureSystemAudio, captureMicrophone,
                          selectedMicrophoneID}));
}

TEST_F(NotificationTest, comesForAValueThatIsNoNewOneToo) {
    launchAndSettle();
    watch();
    model->setSystemVolume(0.9);
    EXPECT_EQ(seen, each({systemVolume}));
}

TEST_F(NotificationTest, comesForAllThatARecordingChangesInOrder) {
    launchAndSettle();
    watch();
    model->startRecording();
    EXPECT_EQ(seen, each({Property::state, errorMessage, lastRecordingURL, systemAudioLevel,
                          microphoneLevel}));
    seen.clear();
    scheduler.settle();
    EXPECT_EQ(seen, each({elapsedSeconds, Property::state, hasScreenPermission,
                          microphonePermission, microphones}));
    seen.clear();
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_EQ(seen, each({elapsedSeconds}));
    seen.clear();
    reportLevel(AudioLevelSource::microphone, 0.5F);
    EXPECT_EQ(seen, each({microphoneLevel}));
    seen.clear();
    power.sleep();
    EXPECT_EQ(seen, each({Property::state, systemAudioLevel, microphoneLevel}));
    seen.clear();
    scheduler.settle();
    EXPECT_EQ(seen, each({lastRecordingURL, Property::state, errorMessage}));
}

TEST_F(NotificationTest, ofTheStateAloneComesOnceAfterEachChange) {
    launchAndSettle();
    std::vector<Case> states;
    QObject::connect(model.get(), &RecordingProperties::stateChanged,
                     [&] { states.push_back(state()); });
    record();
    reportLevel(AudioLevelSource::microphone, 0.5F);
    model->stopRecording();
    scheduler.settle();
    EXPECT_EQ(states,
              (std::vector{Case::preparing, Case::recording, Case::processing, Case::completed}));
}

TEST_F(NotificationTest, ofAConditionNamesItsSource) {
    lead(Case::recording);
    watch();
    recorder.recorder->onSourceCondition(AudioLevelSource::systemAudio, SourceCondition::silent);
    scheduler.runMain();
    EXPECT_EQ(seen, each({systemAudioCondition}));
    seen.clear();
    recorder.recorder->onSourceCondition(AudioLevelSource::microphone, SourceCondition::muted);
    scheduler.runMain();
    EXPECT_EQ(seen, each({microphoneCondition}));
}

TEST_F(NotificationTest, doesNotComeForARequestThatIsIgnored) {
    lead(Case::processing);
    watch();
    model->toggleRecording();
    power.sleep();
    interruptCapture();
    reportLevel(AudioLevelSource::microphone, 0.5F);
    EXPECT_EQ(seen, Notices());
}

} // namespace
} // namespace vantoro::testing
