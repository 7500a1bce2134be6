// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_folder.h"

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

const std::filesystem::path byDefault = "/home/somebody/Movies/Vantoro";

TEST(RecordingFolderTest, isThePreferredOneIfItsPathIsAbsolute) {
    EXPECT_EQ(recordingFolder("/recordings", byDefault), "/recordings");
    EXPECT_EQ(recordingFolder(std::nullopt, byDefault), byDefault);
    EXPECT_EQ(recordingFolder("", byDefault), byDefault);
    EXPECT_EQ(recordingFolder("recordings", byDefault), byDefault);
    EXPECT_EQ(recordingFolder("~/recordings", byDefault), byDefault);
}

TEST_F(ViewModelTest, recordsIntoTheDefaultFolderAndStoresNothingBeforeTheUserChooses) {
    launchAndSettle();
    EXPECT_EQ(values().outputDirectory, byDefault);
    record();
    EXPECT_EQ(recorder.options.at(0).outputDirectory, byDefault);
    EXPECT_TRUE(preferences.stored.empty());
}

TEST_F(ViewModelTest, asksForAFolderInTheUsersLanguageStartingAtTheCurrentOne) {
    preferences.values[Preference::outputDirectory] = "/recordings";
    launchAndSettle();
    model->chooseOutputDirectory();
    ASSERT_EQ(folderDialog.questions.size(), 1U);
    EXPECT_EQ(folderDialog.questions[0].title, "Choose Recording Folder");
    EXPECT_EQ(folderDialog.questions[0].prompt, "Choose");
    EXPECT_EQ(folderDialog.questions[0].directory, "/recordings");
    EXPECT_EQ(folderDialog.questions[0].language, AppLanguage::english);
    preferences.values[Preference::appLanguage] = "zh-Hans";
    model->chooseOutputDirectory();
    EXPECT_EQ(folderDialog.questions[1].title, "选择录音文件夹");
    EXPECT_EQ(folderDialog.questions[1].language, AppLanguage::chinese);
}

TEST_F(ViewModelTest, storesTheChosenFolderAndSalvagesIt) {
    launchAndSettle();
    recorder.salvaged = {"/chosen/found.m4a"};
    model->chooseOutputDirectory();
    folderDialog.answer("/chosen");
    EXPECT_EQ(values().outputDirectory, "/chosen");
    EXPECT_EQ(preferences.get(Preference::outputDirectory), "/chosen");
    scheduler.settle();
    EXPECT_EQ(recorder.foldersSought, (Recordings{byDefault, "/chosen"}));
    EXPECT_EQ(lastRecording(), "/chosen/found.m4a");
}

TEST_F(ViewModelTest, choosingTheSameFolderStoresAndSalvagesAgain) {
    launchAndSettle();
    model->chooseOutputDirectory();
    folderDialog.answer(byDefault);
    scheduler.settle();
    EXPECT_EQ(preferences.stored,
              (decltype(preferences.stored){{Preference::outputDirectory, byDefault.string()}}));
    EXPECT_EQ(recorder.foldersSought, (Recordings{byDefault, byDefault}));
}

TEST_F(ViewModelTest, changesNothingWhenTheUserChoosesNoFolder) {
    launchAndSettle();
    model->chooseOutputDirectory();
    folderDialog.answer(std::nullopt);
    scheduler.settle();
    EXPECT_EQ(values().outputDirectory, byDefault);
    EXPECT_TRUE(preferences.stored.empty());
    EXPECT_EQ(recorder.foldersSought.size(), 1U);
}

TEST_F(ViewModelTest, cancelsTheSalvageOfThePreviousFolder) {
    recorder.salvaged = {"/old/found.m4a"};
    launch();
    model->chooseOutputDirectory();
    recorder.duringSalvage = [this] {
        recorder.duringSalvage = nullptr;
        folderDialog.answer("/chosen");
        recorder.salvaged = {"/chosen/found.m4a"};
    };
    scheduler.settle();
    EXPECT_EQ(recorder.stopRequested, (std::vector<bool>{true, false}));
    EXPECT_EQ(recorder.foldersSought, (Recordings{byDefault, "/chosen"}));
    EXPECT_EQ(lastRecording(), "/chosen/found.m4a");
}

TEST_F(ViewModelTest, takesANewFolderInAnyStateAndTheRunningRecordingStaysWhereItIs) {
    for (const auto state :
         {Case::preparing, Case::recording, Case::processing, Case::completed, Case::failed}) {
        ViewModelWorld world;
        world.lead(state);
        world.model->chooseOutputDirectory();
        world.folderDialog.answer("/chosen");
        EXPECT_EQ(world.state(), state);
        EXPECT_EQ(world.values().outputDirectory, "/chosen");
        EXPECT_EQ(world.preferences.get(Preference::outputDirectory), "/chosen");
        world.scheduler.settle();
        EXPECT_EQ(world.recorder.options.at(0).outputDirectory, byDefault);
    }
}

TEST_F(ViewModelTest, ignoresAFolderThatIsChosenAfterItsEnd) {
    launchAndSettle();
    model->chooseOutputDirectory();
    model.reset();
    folderDialog.answer("/chosen");
    EXPECT_TRUE(preferences.stored.empty());
}

} // namespace
} // namespace vantoro::testing
