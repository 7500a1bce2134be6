// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/work_progress.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/control/view_model_fixture.h"

namespace vantoro::testing {
namespace {

using namespace std::chrono_literals;
using Work = WorkProgress::Work;

TEST(ProgressAccountTest, estimatesFromTheSpeedSoFar) {
    struct Row {
        std::vector<std::pair<std::chrono::milliseconds, double>> reports;
        std::optional<std::chrono::seconds> left;
    };

    for (const auto& row : {
             Row{{}, std::nullopt}, Row{{{0ms, 0}}, std::nullopt},
             Row{{{0ms, 0}, {500ms, 0.5}}, std::nullopt},                            // too early
             Row{{{0ms, 0}, {1000ms, 0.1}}, 9s}, Row{{{0ms, 0}, {1000ms, 0.3}}, 3s}, // rounded up
             Row{{{0ms, 0.875}, {1000ms, 0.9375}}, 1s}, // most was made ahead
             Row{{{0ms, 0.5}, {5000ms, 0.5}}, std::nullopt}, Row{{{0ms, 0}, {2000ms, 1}}, 0s},
             Row{{{0ms, 0.8}, {1000ms, 0.1}, {3000ms, 0.3}}, 7s}, // it starts again
         }) {
        ProgressAccount account(Work::saving);
        for (const auto& [moment, fraction] : row.reports) {
            account.advance(fraction, ProgressAccount::TimePoint(moment + 1h));
        }
        EXPECT_EQ(account.progress().left, row.left)
            << (row.reports.empty() ? 0 : row.reports.back().second);
    }
}

TEST(ProgressAccountTest, fractionStaysWithinItsLimits) {
    ProgressAccount account(Work::salvage);
    account.advance(1.5, {});
    EXPECT_EQ(account.progress().fraction, 1);
    account.advance(-1, {});
    EXPECT_EQ(account.progress().fraction, 0);
    EXPECT_EQ(account.progress().work, Work::salvage);
}

TEST(ProgressTextTest, saysHowMuchIsDoneAndWhatIsLeft) {
    const auto english = preferencesIn("en");
    const auto chinese = preferencesIn("zh-Hans");
    const WorkProgress saving{.work = Work::saving, .fraction = 0.426, .left = 75s};
    const WorkProgress salvage{.work = Work::salvage, .fraction = 0.5, .left = {}};
    EXPECT_EQ(progressText(saving, L10n(english)), "43 %, 01:15 left");
    EXPECT_EQ(progressText(saving, L10n(chinese)), "43 %，剩余 01:15");
    EXPECT_EQ(progressText(salvage, L10n(english)), "Recovering interrupted recordings: 50 %");
    EXPECT_EQ(progressText(salvage, L10n(chinese)), "正在恢复中断的录音：50 %");
}

class ProgressTest : public ViewModelTest {
protected:
    int changes = 0; ///< of the progress

    void watch() {
        QObject::connect(model.get(), &RecordingProperties::propertyChanged, model.get(),
                         [this](Property property) { changes += property == Property::progress; });
    }

    void reportSaving(double fraction) {
        recorder.recorder->onExportProgress(fraction);
        scheduler.runMain();
    }

    void reportSalvage(double fraction) {
        recorder.recorder->onSalvageProgress(fraction);
        scheduler.runMain();
    }

    double shown() const { return values().progress ? values().progress->fraction : -1; }
};

TEST_F(ProgressTest, savingIsShownOnceItTakesLong) {
    lead(Case::processing);
    watch();
    reportSaving(0.1);
    scheduler.advance(499ms);
    EXPECT_EQ(shown(), -1);
    scheduler.advance(1ms);
    EXPECT_EQ(shown(), 0.1);
    EXPECT_EQ(values().progress->work, Work::saving);
    reportSaving(0.2);
    EXPECT_EQ(shown(), 0.2);
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(scheduler.timers(), 0U); // nothing wakes up for it any more
    scheduler.settle();
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(shown(), -1);
}

TEST_F(ProgressTest, savingThatIsSoonOverIsNeverShown) {
    lead(Case::processing);
    watch();
    reportSaving(1);
    scheduler.settle();
    scheduler.advance(1s);
    EXPECT_EQ(state(), Case::completed);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(scheduler.timers(), 0U);
}

TEST_F(ProgressTest, failedSavingShowsNoneAndThenThatOfItsSalvage) {
    recorder.stopError = failure("disk full");
    lead(Case::processing);
    reportSaving(0);
    scheduler.advance(1s);
    EXPECT_EQ(shown(), 0);
    scheduler.runTask();
    EXPECT_EQ(state(), Case::failed);
    EXPECT_EQ(shown(), -1);
    reportSalvage(0.3);
    scheduler.advance(1s);
    EXPECT_EQ(shown(), 0.3);
    EXPECT_EQ(values().progress->work, Work::salvage);
    scheduler.settle();
    EXPECT_EQ(shown(), -1);
}

TEST_F(ProgressTest, salvageThatFindsNothingStartsNoTimer) {
    launch();
    EXPECT_EQ(scheduler.timers(), 0U);
    scheduler.settle();
    EXPECT_EQ(scheduler.timers(), 0U);
}

TEST_F(ProgressTest, salvageIsShownUntilARecordingInterruptsIt) {
    launch();
    reportSalvage(0.4);
    scheduler.advance(1s);
    EXPECT_EQ(shown(), 0.4);
    model->startRecording();
    EXPECT_EQ(shown(), -1);
    reportSalvage(0.5); // of the salvage that is being cancelled
    scheduler.advance(1s);
    EXPECT_EQ(shown(), -1);
}

TEST_F(ProgressTest, salvageThatIsBeingCancelledIsNotTakenForTheSaving) {
    lead(Case::processing);
    reportSalvage(0.9);
    scheduler.advance(1s);
    EXPECT_EQ(shown(), -1);
    reportSaving(0.1);
    reportSalvage(0.9);
    scheduler.advance(1s);
    EXPECT_EQ(shown(), 0.1);
}

} // namespace
} // namespace vantoro::testing
