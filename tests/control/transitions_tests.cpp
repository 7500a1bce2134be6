// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/transitions.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using Case = RecordingState::Case;
using enum StopReason;

TEST(TransitionsTest, followFromTheStateAlone) {
    struct Row {
        Case state;
        bool busy;
        bool processing;
        bool underWay;
        L10n::Key status;
    };

    for (const auto& row : {
             Row{Case::idle, false, false, false, L10n::Key::ready},
             Row{Case::preparing, true, true, true, L10n::Key::preparing},
             Row{Case::recording, true, false, true, L10n::Key::recording},
             Row{Case::processing, true, true, false, L10n::Key::saving},
             Row{Case::completed, false, false, false, L10n::Key::saved},
             Row{Case::failed, false, false, false, L10n::Key::needsAttention},
         }) {
        SCOPED_TRACE(static_cast<int>(row.state));
        EXPECT_EQ(isBusy(row.state), row.busy);
        EXPECT_EQ(isProcessing(row.state), row.processing);
        EXPECT_EQ(isUnderWay(row.state), row.underWay);
        EXPECT_EQ(statusKey(row.state), row.status);
        EXPECT_EQ(canStart(row.state, true, true), !row.busy);
        EXPECT_EQ(canStart(row.state, true, false), !row.busy);
        EXPECT_EQ(canStart(row.state, false, true), !row.busy);
        EXPECT_FALSE(canStart(row.state, false, false));
    }
}

TEST(TransitionsTest, keepSleepAsThePendingReasonAndReplaceOnlyTheUsers) {
    struct Row {
        std::optional<StopReason> pending;
        StopReason arrived;
        StopReason kept;
    };

    for (const auto& [pending, arrived, kept] : {
             Row{std::nullopt, systemSleep, systemSleep},
             Row{std::nullopt, captureInterruption, captureInterruption},
             Row{systemSleep, systemSleep, systemSleep},
             Row{systemSleep, captureInterruption, systemSleep},
             Row{captureInterruption, systemSleep, systemSleep},
             Row{captureInterruption, captureInterruption, captureInterruption},
             Row{std::nullopt, diskNearlyFull, diskNearlyFull},
             Row{systemSleep, diskNearlyFull, systemSleep},
             Row{diskNearlyFull, systemSleep, systemSleep},
             Row{diskNearlyFull, captureInterruption, diskNearlyFull},
             Row{std::nullopt, user, user},
             Row{user, systemSleep, systemSleep},
             Row{user, captureInterruption, captureInterruption},
             Row{captureInterruption, user, captureInterruption},
         }) {
        EXPECT_EQ(pendingStop(pending, arrived), kept);
    }
}

TEST(TransitionsTest, sayWhyARecordingEndedUnlessTheUserWishedIt) {
    EXPECT_EQ(savedMessageKey(user), std::nullopt);
    EXPECT_EQ(savedMessageKey(systemSleep), L10n::Key::sleepSaved);
    EXPECT_EQ(savedMessageKey(captureInterruption), L10n::Key::captureInterruptedSaved);
    EXPECT_EQ(savedMessageKey(diskNearlyFull), L10n::Key::diskNearlyFullSaved);
}

} // namespace
} // namespace vantoro::testing
