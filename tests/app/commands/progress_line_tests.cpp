// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/commands/terminal.h"

#include <gtest/gtest.h>

#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

class ProgressLineTest : public ::testing::Test {
protected:
    MemoryPreferences english = preferencesIn("en");
    MemoryPreferences chinese = preferencesIn("zh-Hans");
    RecordingProperties::Values values;

    ProgressLineTest() {
        values.elapsedSeconds = 5;
        values.systemAudioLevel = 0.5;
        values.microphoneLevel = 1;
    }
};

TEST_F(ProgressLineTest, showsTheTimeAndTheLevelsOfTheSourcesThatAreOn) {
    const L10n texts(english);
    EXPECT_EQ(recordingLine(values, texts),
              "00:05  System [##########----------]  Mic [####################]");
    values.captureSystemAudio = false;
    EXPECT_EQ(recordingLine(values, texts), "00:05  Mic [####################]");
    values.captureSystemAudio = true;
    values.captureMicrophone = false;
    values.systemAudioLevel = 0;
    values.elapsedSeconds = 3600;
    EXPECT_EQ(recordingLine(values, texts), "01:00:00  System [--------------------]");
}

TEST_F(ProgressLineTest, speaksTheUsersLanguage) {
    values.captureSystemAudio = false;
    EXPECT_EQ(recordingLine(values, L10n(chinese)), "00:05  麦克风 [####################]");
    EXPECT_EQ(savingLine({.fraction = 0.5, .left = {}}, L10n(chinese)), "保存中 50 %");
}

TEST_F(ProgressLineTest, namesASourceThatDeliversNothing) {
    values.systemAudioLevel = 0;
    values.microphoneLevel = 0;
    values.systemAudioCondition = SourceCondition::silent;
    values.microphoneCondition = SourceCondition::muted;
    EXPECT_EQ(recordingLine(values, L10n(english)),
              "00:05  System [--------------------] only silence!"
              "  Mic [--------------------] muted!");
    EXPECT_EQ(recordingLine(values, L10n(chinese)), "00:05  系统 [--------------------] 没有声音!"
                                                    "  麦克风 [--------------------] 已静音!");
}

TEST_F(ProgressLineTest, saysHowFarTheSavingOrTheSalvageIs) {
    const L10n texts(english);
    EXPECT_EQ(savingLine({.fraction = 0, .left = {}}, texts), "Saving 0 %");
    EXPECT_EQ(savingLine({.fraction = 0.426, .left = std::chrono::seconds(5)}, texts),
              "Saving 43 %, 00:05 left");
    EXPECT_EQ(savingLine({.work = WorkProgress::Work::salvage, .fraction = 1, .left = {}}, texts),
              "Recovering interrupted recordings: 100 %");
}

} // namespace
} // namespace vantoro::testing
