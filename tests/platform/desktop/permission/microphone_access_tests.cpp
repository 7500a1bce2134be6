// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/microphone_access.h"

#include <atomic>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "tests/platform/desktop/bus/private_bus.h"
#include "tests/platform/desktop/permission/privacy_switch.h"

namespace vantoro::testing {
namespace {

using enum AuthorizationStatus;

class MicrophoneAccessTest : public ::testing::Test {
protected:
    PrivateBus privateBus;
    PrivacySwitch privacy;
    QTemporaryDir folder;
    std::filesystem::path sandbox = folder.filePath("sandbox-info").toStdString();
    bool opens = true;
    bool hidden = false;
    int openings = 0;
    std::unique_ptr<BusService> store;

    desktop::DesktopMicrophoneAccess access{[this] {
                                                ++openings;
                                                return opens;
                                            },
                                            [this] { return hidden; },
                                            privateBus.address().toStdString(), sandbox, patience};

    void enterSandbox() { std::ofstream(sandbox) << "[Application]\nname=app\n"; }

    void userDecided(const QString& word) {
        store.reset(); // releases its name
        store =
            std::make_unique<BusService>(privateBus, "org.freedesktop.impl.portal.PermissionStore",
                                         permissionStore("app", {word}));
    }
};

TEST_F(MicrophoneAccessTest, isAuthorizedByDefault) {
    EXPECT_EQ(access.status(), authorized);
    EXPECT_EQ(openings, 0);
}

TEST_F(MicrophoneAccessTest, isRestrictedForAsLongAsTheSettingsSaySo) {
    PrivacySwitch::disableMicrophone(true);
    EXPECT_EQ(access.status(), restricted);
    PrivacySwitch::disableMicrophone(false);
    EXPECT_EQ(access.status(), authorized);
}

TEST_F(MicrophoneAccessTest, isRestrictedByThePortalsLockdown) {
    const BusService backend(privateBus, "org.freedesktop.impl.portal.desktop.gtk", lockdown(true));
    EXPECT_EQ(access.status(), restricted);
}

TEST_F(MicrophoneAccessTest, isDeniedWhenTheChosenSourceIsHidden) {
    hidden = true;
    EXPECT_EQ(access.status(), denied);
}

TEST_F(MicrophoneAccessTest, storeCountsInASandboxOnly) {
    userDecided("no");
    EXPECT_EQ(access.status(), authorized);
    enterSandbox();
    EXPECT_EQ(access.status(), denied);
}

TEST_F(MicrophoneAccessTest, sandboxThatHasNotAskedYetIsNotDetermined) {
    enterSandbox();
    EXPECT_EQ(access.status(), notDetermined);
    userDecided("ask");
    EXPECT_EQ(access.status(), notDetermined);
    EXPECT_EQ(openings, 0);
}

TEST_F(MicrophoneAccessTest, isTheSameOnAnyThread) {
    enterSandbox();
    userDecided("yes");
    std::atomic<AuthorizationStatus> seen = denied;
    std::thread([&] { seen = access.status(); }).join();
    EXPECT_EQ(seen, authorized);
}

TEST_F(MicrophoneAccessTest, requestOpensTheMicrophoneAndTakesTheUsersDecision) {
    enterSandbox();
    userDecided("yes");
    EXPECT_TRUE(access.request());
    userDecided("no"); // opened anyway, but the user's decision counts
    EXPECT_FALSE(access.request());
    EXPECT_EQ(openings, 2);
}

TEST_F(MicrophoneAccessTest, requestWithoutAStoredDecisionUsesTheAttempt) {
    enterSandbox();
    EXPECT_TRUE(access.request());
    opens = false;
    EXPECT_FALSE(access.request());
}

TEST_F(MicrophoneAccessTest, requestDoesNotOverruleTheDesktop) {
    PrivacySwitch::disableMicrophone(true);
    EXPECT_FALSE(access.request());
}

} // namespace
} // namespace vantoro::testing
