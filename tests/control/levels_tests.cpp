// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <limits>

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using enum AudioLevelSource;

TEST(AudioLevelStoreTest, isOneForTheProgramAndSilentAtFirst) {
    EXPECT_EQ(&AudioLevelStore::shared(), &AudioLevelStore::shared());
    EXPECT_EQ(AudioLevelStore::shared().systemAudioLevel(), 0);
    EXPECT_EQ(AudioLevelStore::shared().microphoneLevel(), 0);
}

TEST(AudioLevelStoreTest, keepsTheSourcesApartAndHoldsNothingBelowZero) {
    AudioLevelStore store;
    store.setLevel(systemAudio, 0.25);
    store.setLevel(AudioLevelSource::microphone, 0.75);
    EXPECT_EQ(store.systemAudioLevel(), 0.25);
    EXPECT_EQ(store.microphoneLevel(), 0.75);
    store.setLevel(systemAudio, -0.5);
    store.setLevel(AudioLevelSource::microphone, std::nan(""));
    EXPECT_EQ(store.systemAudioLevel(), 0);
    EXPECT_EQ(store.microphoneLevel(), 0);
}

TEST(AudioLevelStoreTest, tellsOfEachWriteOnceAfterIt) {
    AudioLevelStore store;
    std::vector<std::string> seen;
    QObject::connect(&store, &AudioLevelStore::levelChanged, [&](AudioLevelSource source) {
        seen.push_back(std::to_string(static_cast<int>(source)) + " " +
                       std::to_string(store.microphoneLevel()));
    });
    store.setLevel(AudioLevelSource::microphone, 0.5);
    store.setLevel(systemAudio, 0.25);
    EXPECT_EQ(seen, (std::vector<std::string>{"1 0.500000", "0 0.500000"}));
}

TEST(ShownLevelTest, isAtLeastZeroAndAtMostOne) {
    struct Row {
        float measured;
        double shown;
    };

    for (const auto& [measured, shown] : {
             Row{-std::numeric_limits<float>::infinity(), 0},
             Row{-0.2F, 0},
             Row{-0.0F, 0},
             Row{0, 0},
             Row{std::numeric_limits<float>::denorm_min(),
                 std::numeric_limits<float>::denorm_min()},
             Row{0.5F, 0.5},
             Row{0.1F, static_cast<double>(0.1F)},
             Row{1, 1},
             Row{1.7F, 1},
             Row{std::numeric_limits<float>::infinity(), 1},
         }) {
        EXPECT_EQ(shownLevel(measured), shown) << measured;
    }
}

class LevelsTest : public ViewModelTest {
protected:
    void expectLevels(double ofSystemAudio, double ofMicrophone) {
        EXPECT_EQ(values().systemAudioLevel, ofSystemAudio);
        EXPECT_EQ(values().microphoneLevel, ofMicrophone);
        EXPECT_EQ(levels.systemAudioLevel(), ofSystemAudio);
        EXPECT_EQ(levels.microphoneLevel(), ofMicrophone);
    }
};

TEST_F(LevelsTest, reachTheWindowAndTheStoreByTheirSource) {
    lead(Case::recording);
    reportLevel(systemAudio, 0.25F);
    expectLevels(0.25, 0);
    reportLevel(AudioLevelSource::microphone, 1.7F);
    expectLevels(0.25, 1);
    reportLevel(systemAudio, -0.2F);
    expectLevels(0, 1);
}

TEST_F(LevelsTest, areWrittenOnTheMainThreadOnlyAndEachOfThem) {
    lead(Case::recording);
    int written = 0;
    QObject::connect(&levels, &AudioLevelStore::levelChanged, model.get(), [&] { ++written; });
    recorder.recorder->onAudioLevel(AudioLevelSource::microphone, 0.25F);
    recorder.recorder->onAudioLevel(AudioLevelSource::microphone, 0.25F);
    expectLevels(0, 0);
    scheduler.runMain();
    EXPECT_EQ(written, 2);
    expectLevels(0, 0.25);
}

TEST_F(LevelsTest, areIgnoredUnlessRecording) {
    for (const auto from :
         {Case::idle, Case::preparing, Case::processing, Case::completed, Case::failed}) {
        ViewModelWorld world;
        world.lead(from);
        world.reportLevel(systemAudio, 0.5F);
        EXPECT_EQ(world.levels.systemAudioLevel(), 0);
        EXPECT_EQ(world.values().systemAudioLevel, 0);
    }
}

TEST_F(LevelsTest, areZeroAtOnceWhenTheRecordingIsStoppedAndStaySo) {
    lead(Case::recording);
    reportLevel(systemAudio, 0.5F);
    reportLevel(AudioLevelSource::microphone, 0.5F);
    recorder.recorder->onAudioLevel(AudioLevelSource::microphone, 0.75F); // in flight
    model->toggleRecording();
    expectLevels(0, 0);
    scheduler.runMain();
    expectLevels(0, 0);
    scheduler.settle();
    expectLevels(0, 0);
}

TEST_F(LevelsTest, areZeroFromTheRequestToStartOn) {
    launchAndSettle();
    levels.setLevel(systemAudio, 0.5);
    levels.setLevel(AudioLevelSource::microphone, 0.5);
    model->startRecording();
    expectLevels(0, 0);
}

TEST_F(LevelsTest, stayZeroAfterAFailedStop) {
    lead(Case::recording);
    reportLevel(AudioLevelSource::microphone, 0.5F);
    recorder.stopError = failure("broken");
    power.sleep();
    scheduler.settle();
    expectLevels(0, 0);
}

class ConditionsTest : public ViewModelTest {
protected:
    void reportMuted() {
        recorder.recorder->onSourceCondition(AudioLevelSource::microphone, SourceCondition::muted);
        scheduler.runMain();
    }

    SourceCondition ofMicrophone() {
        EXPECT_EQ(levels.condition(AudioLevelSource::microphone), values().microphoneCondition);
        EXPECT_EQ(values().systemAudioCondition, levels.condition(systemAudio));
        return values().microphoneCondition;
    }
};

TEST_F(ConditionsTest, reachTheWindowAndTheStoreByTheirSource) {
    lead(Case::recording);
    reportMuted();
    EXPECT_EQ(ofMicrophone(), SourceCondition::muted);
    EXPECT_EQ(values().systemAudioCondition, SourceCondition::delivering);
    recorder.recorder->onSourceCondition(systemAudio, SourceCondition::silent);
    scheduler.runMain();
    EXPECT_EQ(ofMicrophone(), SourceCondition::muted);
    EXPECT_EQ(values().systemAudioCondition, SourceCondition::silent);
}

TEST_F(ConditionsTest, areTakenWhileTheRecordingIsPreparedToo) {
    lead(Case::preparing);
    reportMuted();
    EXPECT_EQ(ofMicrophone(), SourceCondition::muted);
    scheduler.settle();
    EXPECT_EQ(values().state.which(), Case::recording);
    EXPECT_EQ(ofMicrophone(), SourceCondition::muted);
}

TEST_F(ConditionsTest, areIgnoredWhenNothingIsRecorded) {
    for (const auto from : {Case::idle, Case::processing, Case::completed, Case::failed}) {
        ViewModelWorld world;
        world.lead(from);
        world.recorder.recorder->onSourceCondition(systemAudio, SourceCondition::silent);
        world.scheduler.runMain();
        EXPECT_EQ(world.values().systemAudioCondition, SourceCondition::delivering);
        EXPECT_EQ(world.levels.condition(systemAudio), SourceCondition::delivering);
    }
}

TEST_F(ConditionsTest, endWithTheRecording) {
    lead(Case::recording);
    reportMuted();
    recorder.recorder->onSourceCondition(systemAudio, SourceCondition::silent);
    scheduler.runMain();
    model->toggleRecording();
    EXPECT_EQ(ofMicrophone(), SourceCondition::delivering);
    EXPECT_EQ(values().systemAudioCondition, SourceCondition::delivering);
}

TEST_F(ConditionsTest, endWithAStartThatFails) {
    recorder.startError = failure("broken");
    lead(Case::preparing);
    reportMuted();
    scheduler.settle();
    EXPECT_EQ(values().state.which(), Case::failed);
    EXPECT_EQ(ofMicrophone(), SourceCondition::delivering);
}

TEST_F(ConditionsTest, areReportedOnlyOnChange) {
    lead(Case::recording);
    int told = 0;
    QObject::connect(&levels, &AudioLevelStore::conditionChanged, model.get(), [&] { ++told; });
    reportMuted();
    reportMuted();
    EXPECT_EQ(told, 1);
}

} // namespace
} // namespace vantoro::testing
