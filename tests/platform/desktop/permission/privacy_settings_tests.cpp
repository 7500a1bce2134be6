// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/gio/privacy_settings.h"

#include <thread>

#include <gtest/gtest.h>

#include "tests/platform/desktop/permission/privacy_switch.h"

namespace vantoro::testing {
namespace {

TEST(PrivacySettingsTest, areReadAnewEachTime) {
    const PrivacySwitch privacy;
    EXPECT_FALSE(desktop::microphoneDisabledBySettings());
    PrivacySwitch::disableMicrophone(true);
    EXPECT_TRUE(desktop::microphoneDisabledBySettings());
    PrivacySwitch::disableMicrophone(false);
    EXPECT_FALSE(desktop::microphoneDisabledBySettings());
}

TEST(PrivacySettingsTest, areReadOnAnyThread) {
    const PrivacySwitch privacy;
    PrivacySwitch::disableMicrophone(true);
    bool disabled = false;
    std::thread([&] { disabled = desktop::microphoneDisabledBySettings(); }).join();
    EXPECT_TRUE(disabled);
}

TEST(PrivacySettingsTest, disableNothingOnADesktopWithoutThem) {
    EXPECT_FALSE(desktop::microphoneDisabledBySettings("test.privacy.not-installed"));
    EXPECT_FALSE(desktop::microphoneDisabledBySettings("test.privacy.without-microphone"));
}

} // namespace
} // namespace vantoro::testing
