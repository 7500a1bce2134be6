// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/desktop_survey.h"

#include <chrono>
#include <optional>

#include <QtCore/QElapsedTimer>
#include <QtDBus/QDBusVariant>

#include <gtest/gtest.h>

#include "platform/desktop/status_area/status_notifier_item.h"
#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/bus/silent_bus.h"
#include "tests/platform/desktop/power/mock_logind.h"

namespace vantoro::testing {
namespace {

using desktop::DesktopSurvey;
using desktop::Presence;
using desktop::SleepDelay;

constexpr const char* portalService = "org.freedesktop.portal.Desktop";

QDBusMessage emptyReply(const QDBusMessage& question) {
    return question.createReply();
}

QDBusMessage refusal(const QDBusMessage& question) {
    return question.createErrorReply(QDBusError::AccessDenied, "no");
}

class DesktopSurveyTest : public ::testing::Test {
protected:
    PrivateBus sessionBus;
    PrivateBus systemBus;

    DesktopSurvey survey(std::chrono::milliseconds limit = patience) const {
        return desktop::surveyDesktop({.system = systemBus.address().toStdString(),
                                       .session = sessionBus.address().toStdString()},
                                      limit);
    }

    BusService watcher(bool hasPanel) const {
        return {sessionBus, desktop::statusNotifierWatcher,
                [hasPanel](const QDBusMessage& question) {
                    return question.createReply(QVariant::fromValue(QDBusVariant(hasPanel)));
                }};
    }
};

TEST_F(DesktopSurveyTest, findsNothingOnEmptyBuses) {
    EXPECT_EQ(survey(), (DesktopSurvey{.sessionBus = Presence::present,
                                       .statusArea = Presence::absent,
                                       .portal = Presence::absent,
                                       .sleepDelay = SleepDelay::noLoginManager}));
}

TEST_F(DesktopSurveyTest, findsTheStatusAreaWhereItHasAPanel) {
    {
        const auto withoutPanel = watcher(false);
        EXPECT_EQ(survey().statusArea, Presence::absent);
    }
    const auto withPanel = watcher(true);
    EXPECT_EQ(survey().statusArea, Presence::present);
}

TEST_F(DesktopSurveyTest, findsThePortal) {
    const BusService portal(sessionBus, portalService, emptyReply);
    EXPECT_EQ(survey().portal, Presence::present);
}

TEST_F(DesktopSurveyTest, releasesTheGrantedSleepDelay) {
    const MockLogind logind(systemBus);
    EXPECT_EQ(survey().sleepDelay, SleepDelay::granted);
    EXPECT_TRUE(logind.eventuallyHas({}));
}

TEST_F(DesktopSurveyTest, isToldThatADelayOfSleepIsRefused) {
    const BusService logind(systemBus, "org.freedesktop.login1", refusal);
    EXPECT_EQ(survey().sleepDelay, SleepDelay::refused);
}

TEST_F(DesktopSurveyTest, replyWithoutALockIsNone) {
    const BusService logind(systemBus, "org.freedesktop.login1", emptyReply);
    EXPECT_EQ(survey().sleepDelay, SleepDelay::refused);
}

TEST_F(DesktopSurveyTest, knowsNothingOfServicesThatDoNotAnswerInTime) {
    const BusService area(sessionBus, desktop::statusNotifierWatcher, noAnswer);
    const BusService portal(sessionBus, portalService, noAnswer);
    const BusService logind(systemBus, "org.freedesktop.login1", noAnswer);
    EXPECT_EQ(survey(std::chrono::seconds(2)), (DesktopSurvey{.sessionBus = Presence::present,
                                                              .statusArea = Presence::unknown,
                                                              .portal = Presence::unknown,
                                                              .sleepDelay = SleepDelay::unknown}));
}

TEST(DesktopSurveyWithoutBusesTest, saysSoAtOnce) {
    const DesktopSurvey expected{.sessionBus = Presence::absent,
                                 .statusArea = Presence::absent,
                                 .portal = Presence::absent,
                                 .sleepDelay = SleepDelay::noLoginManager};
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(desktop::surveyDesktop({}, patience), expected);
    EXPECT_EQ(desktop::surveyDesktop(
                  {.system = "unix:path=/no/bus", .session = "unix:path=/no/bus"}, patience),
              expected);
    EXPECT_LT(std::chrono::milliseconds(timer.elapsed()), withoutWaiting);
}

TEST(DesktopSurveyWithoutBusesTest, waitsForAHangingBusUntilTheLimit) {
    const SilentBus silent;
    EXPECT_EQ(desktop::surveyDesktop({.system = silent.address(), .session = silent.address()},
                                     std::chrono::milliseconds(200)),
              DesktopSurvey());
}

} // namespace
} // namespace vantoro::testing
