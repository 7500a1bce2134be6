// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/notice_rules.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/memory_preferences.h"

namespace vantoro::testing {
namespace {

using Case = RecordingState::Case;
using Condition = SourceCondition;

TEST(OutcomeTest, followsFromTheChangeOfTheState) {
    struct Row {
        Case before;
        Case now;
        StopReason reason;
        std::optional<Outcome> outcome;
    };

    for (const auto& row : {
             Row{Case::processing, Case::completed, StopReason::user, Outcome::saved},
             Row{Case::processing, Case::completed, StopReason::systemSleep,
                 Outcome::endedByItself},
             Row{Case::processing, Case::completed, StopReason::captureInterruption,
                 Outcome::endedByItself},
             Row{Case::processing, Case::completed, StopReason::diskNearlyFull,
                 Outcome::endedByItself},
             Row{Case::idle, Case::completed, StopReason::user, Outcome::salvaged},
             Row{Case::completed, Case::completed, StopReason::systemSleep, Outcome::salvaged},
             Row{Case::failed, Case::completed, StopReason::user, Outcome::salvaged},
             Row{Case::preparing, Case::failed, StopReason::user, Outcome::failed},
             Row{Case::processing, Case::failed, StopReason::systemSleep, Outcome::failed},
             Row{Case::idle, Case::preparing, StopReason::user, std::nullopt},
             Row{Case::preparing, Case::recording, StopReason::user, std::nullopt},
             Row{Case::recording, Case::processing, StopReason::systemSleep, std::nullopt},
         }) {
        EXPECT_EQ(outcomeOf(row.before, row.now, row.reason), row.outcome)
            << static_cast<int>(row.before) << " " << static_cast<int>(row.now);
    }
}

TEST(OutcomeTest, notificationSaysWhatAndOffersTheRecording) {
    struct Row {
        Outcome outcome;
        const char* message;
        const char* title;
        const char* text;
        bool isImportant;
        std::size_t actions;
    };

    const auto preferences = preferencesIn("en");
    for (const auto& row : {
             Row{Outcome::saved, "", "Recording saved", "a.m4a", false, 2},
             Row{Outcome::saved, "A second is silent.", "Recording saved", "A second is silent.",
                 true, 2},
             Row{Outcome::endedByItself, "Why.", "The recording ended by itself", "Why.", true, 2},
             Row{Outcome::salvaged, "One.", "Recording recovered", "One.", false, 2},
             Row{Outcome::failed, "No disk.", "Needs attention", "No disk.", true, 0},
         }) {
        const auto shown =
            outcomeNotification(row.outcome, "/music/a.m4a", row.message, L10n(preferences));
        EXPECT_EQ(shown.title, row.title);
        EXPECT_EQ(shown.text, row.text);
        EXPECT_EQ(shown.isImportant, row.isImportant) << row.title;
        EXPECT_EQ(shown.actions.size(), row.actions) << row.title;
    }
}

TEST(OutcomeTest, notificationSpeaksTheUsersLanguage) {
    const auto preferences = preferencesIn("zh-Hans");
    const L10n texts(preferences);
    const auto shown = outcomeNotification(Outcome::endedByItself, "/music/a.m4a", "原因。", texts);
    EXPECT_EQ(shown.title, "录音已自行结束");
    EXPECT_EQ(shown.actions,
              (std::vector<NotificationAction>{{"play", "播放"}, {"reveal", "在文件夹中显示"}}));
    EXPECT_EQ(troubleNotification(AudioLevelSource::microphone, Condition::muted, texts).title,
              "麦克风：已静音");
}

TEST(TroubleTest, notificationNamesTheSourceAndItsTrouble) {
    const auto preferences = preferencesIn("en");
    const auto shown =
        troubleNotification(AudioLevelSource::systemAudio, Condition::silent, L10n(preferences));
    EXPECT_EQ(shown, (Notification{.title = "System Audio: only silence",
                                   .text = "Nothing but silence for at least 10 seconds",
                                   .clickLabel = "Show Vantoro",
                                   .actions = {}}));
}

/// The moments at which the conditions, as pairs of a second and what begins then, are told.
std::vector<std::int64_t> told(const std::vector<std::pair<std::int64_t, Condition>>& conditions,
                               std::int64_t end) {
    TroubleWatch watch;
    std::vector<std::int64_t> moments;
    auto next = conditions.begin();
    auto now = Condition::delivering;
    for (std::int64_t second = 0; second <= end; ++second) {
        for (; next != conditions.end() && next->first == second; ++next) {
            now = next->second;
            if (watch.isToBeTold(now, second)) {
                moments.push_back(second);
            }
        }
        if (watch.isToBeTold(now, second)) {
            moments.push_back(second);
        }
    }
    return moments;
}

TEST(TroubleTest, isToldOnceItLastsTenSeconds) {
    using enum Condition;
    using Moments = std::vector<std::int64_t>;
    EXPECT_EQ(told({}, 100), Moments());
    EXPECT_EQ(told({{0, muted}}, 100), Moments({10}));
    EXPECT_EQ(told({{5, muted}, {14, delivering}}, 100), Moments());
    EXPECT_EQ(told({{5, muted}, {16, delivering}, {20, muted}}, 100), Moments({15, 30}));
    EXPECT_EQ(told({{5, coded}}, 100), Moments({15}));
    EXPECT_EQ(told({{10, silent}}, 100), Moments({10})); // reported after ten seconds of it
    EXPECT_EQ(told({{10, silent}, {12, delivering}, {40, silent}}, 100), Moments({10}));
    EXPECT_EQ(told({{10, silent}, {12, muted}}, 100), Moments({10, 22}));
}

TEST(TroubleTest, timeBeforeTheRecordingBeganDoesNotCount) {
    TroubleWatch watch;
    EXPECT_FALSE(watch.isToBeTold(Condition::muted, 500)); // still that of the one before
    EXPECT_FALSE(watch.isToBeTold(Condition::muted, 0));
    EXPECT_FALSE(watch.isToBeTold(Condition::muted, 9));
    EXPECT_TRUE(watch.isToBeTold(Condition::muted, 10));
}

} // namespace
} // namespace vantoro::testing
