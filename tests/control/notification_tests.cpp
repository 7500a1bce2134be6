// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using Properties = std::vector<Property>;
using enum Property;

class NotificationTest : public ViewModelTest {
protected:
    Properties seen;

    void watch() {
        QObject::connect(model.get(), &RecordingProperties::propertyChanged,
                         [this](Property property) { seen.push_back(property); });
    }
};

TEST_F(NotificationTest, comesOnceAfterWhatTheUserSets) {
    launchAndSettle();
    watch();
    std::vector<double> volumes;
    QObject::connect(model.get(), &RecordingProperties::propertyChanged,
                     [&] { volumes.push_back(values().systemVolume); });
    model->setSystemVolume(1.25);
    EXPECT_EQ(volumes, std::vector<double>{1.25});
    model->setMicrophoneVolume(0.5);
    model->setCaptureSystemAudio(false);
    model->setCaptureMicrophone(false);
    model->setSelectedMicrophoneID(std::nullopt);
    EXPECT_EQ(seen, (Properties{systemVolume, microphoneVolume, captureSystemAudio,
                                captureMicrophone, selectedMicrophoneID}));
}

TEST_F(NotificationTest, comesForAValueThatIsNoNewOneToo) {
    launchAndSettle();
    watch();
    model->setSystemVolume(0.9);
    EXPECT_EQ(seen, (Properties{systemVolume}));
}

TEST_F(NotificationTest, comesForAllThatARecordingChangesInOrder) {
    launchAndSettle();
    watch();
    model->startRecording();
    EXPECT_EQ(seen, (Properties{Property::state, errorMessage, lastRecordingURL, systemAudioLevel,
                                microphoneLevel}));
    seen.clear();
    scheduler.settle();
    EXPECT_EQ(seen, (Properties{elapsedSeconds, Property::state, hasScreenPermission,
                                microphonePermission, microphones}));
    seen.clear();
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_EQ(seen, (Properties{elapsedSeconds}));
    seen.clear();
    reportLevel(AudioLevelSource::microphone, 0.5F);
    EXPECT_EQ(seen, (Properties{microphoneLevel}));
    seen.clear();
    power.sleep();
    EXPECT_EQ(seen, (Properties{Property::state, systemAudioLevel, microphoneLevel}));
    seen.clear();
    scheduler.settle();
    EXPECT_EQ(seen, (Properties{lastRecordingURL, Property::state, errorMessage}));
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
    EXPECT_EQ(seen, (Properties{systemAudioCondition}));
    seen.clear();
    recorder.recorder->onSourceCondition(AudioLevelSource::microphone, SourceCondition::muted);
    scheduler.runMain();
    EXPECT_EQ(seen, (Properties{microphoneCondition}));
}

TEST_F(NotificationTest, doesNotComeForARequestThatIsIgnored) {
    lead(Case::processing);
    watch();
    model->toggleRecording();
    power.sleep();
    interruptCapture();
    reportLevel(AudioLevelSource::microphone, 0.5F);
    EXPECT_EQ(seen, Properties());
}

} // namespace
} // namespace vantoro::testing
