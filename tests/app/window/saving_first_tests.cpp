// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/saving_first.h"

#include <optional>

#include "tests/control/event_loop.h"
#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

class SavingFirstTest : public ViewModelTest {
protected:
    std::optional<SavingFirst> saving;
    std::optional<bool> saved;

    void request() {
        saving.emplace(*model);
        saving->request([this](bool isSaved) { saved = isSaved; });
    }

    /// Whether `done` is eventually called.
    bool isTold() {
        return EventLoop::runUntil([this] {
            scheduler.settle();
            return saved.has_value();
        });
    }

    void TearDown() override { saving.reset(); }
};

TEST_F(SavingFirstTest, doesNotWaitWithoutARecording) {
    for (const auto state : {Case::idle, Case::completed, Case::failed}) {
        lead(state);
        request();
        EXPECT_EQ(saved, true) << static_cast<int>(state);
        EXPECT_FALSE(saving->isUnderWay());
        saved.reset();
        saving.reset();
    }
}

TEST_F(SavingFirstTest, recordingIsStoppedAndWaitedFor) {
    lead(Case::recording);
    request();
    EXPECT_TRUE(saving->isUnderWay());
    EXPECT_EQ(state(), Case::processing);
    EXPECT_EQ(saved, std::nullopt);
    ASSERT_TRUE(isTold());
    EXPECT_EQ(saved, true);
    EXPECT_EQ(state(), Case::completed);
    EXPECT_FALSE(saving->isUnderWay());
}

TEST_F(SavingFirstTest, recordingThatIsBeingPreparedIsStoppedAsSoonAsItRuns) {
    lead(Case::preparing);
    request();
    EXPECT_EQ(state(), Case::preparing);
    ASSERT_TRUE(isTold());
    EXPECT_EQ(saved, true);
    EXPECT_EQ(recorder.calls.back(), "stop");
}

TEST_F(SavingFirstTest, recordingThatIsBeingSavedIsWaitedFor) {
    lead(Case::processing);
    request();
    EXPECT_EQ(saved, std::nullopt);
    ASSERT_TRUE(isTold());
    EXPECT_EQ(saved, true);
    EXPECT_EQ(recorder.volumes.size(), 1U);
}

TEST_F(SavingFirstTest, recordingStartedMeanwhileIsSavedToo) {
    lead(Case::processing);
    request();
    scheduler.settle();
    ASSERT_EQ(state(), Case::completed);
    model->startRecording();
    ASSERT_TRUE(isTold());
    EXPECT_EQ(saved, true);
    EXPECT_EQ(recorder.volumes.size(), 2U);
}

TEST_F(SavingFirstTest, saysWhenItCouldNotBeSaved) {
    lead(Case::recording);
    recorder.stopError = failure("disk full");
    request();
    ASSERT_TRUE(isTold());
    EXPECT_EQ(saved, false);
}

TEST_F(SavingFirstTest, failedStartLeavesNothingToSave) {
    lead(Case::preparing);
    recorder.startError = failure("no such device");
    request();
    ASSERT_TRUE(isTold());
    EXPECT_EQ(saved, false);
}

TEST_F(SavingFirstTest, allRequestsAreAnswered) {
    lead(Case::recording);
    int told = 0;
    saving.emplace(*model);
    saving->request([&](bool) { ++told; });
    saving->request([&](bool) { ++told; });
    EXPECT_TRUE(EventLoop::runUntil([&] {
        scheduler.settle();
        return told == 2;
    }));
    EXPECT_EQ(recorder.volumes.size(), 1U);
}

TEST_F(SavingFirstTest, nobodyIsToldAfterItsEnd) {
    lead(Case::recording);
    request();
    saving.reset();
    scheduler.settle();
    QCoreApplication::processEvents();
    EXPECT_EQ(saved, std::nullopt);
}

} // namespace
} // namespace vantoro::testing
