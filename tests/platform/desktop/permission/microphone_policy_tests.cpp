// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/microphone_access.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::MicrophoneFacts;
using desktop::StoredPermission;
using enum AuthorizationStatus;

struct PolicyCase {
    const char* name;
    MicrophoneFacts facts;
    AuthorizationStatus expected;
};

class MicrophonePolicyTest : public ::testing::TestWithParam<PolicyCase> {};

TEST_P(MicrophonePolicyTest, decides) {
    EXPECT_EQ(desktop::microphoneAuthorization(GetParam().facts), GetParam().expected);
}

MicrophoneFacts sandboxed(StoredPermission stored, bool hidden = false) {
    return {.sandboxed = true, .stored = stored, .chosenSourceHidden = hidden};
}

INSTANTIATE_TEST_SUITE_P(
    Facts, MicrophonePolicyTest,
    ::testing::Values(
        PolicyCase{"nothingAgainstIt", {}, authorized},
        PolicyCase{"settings", {.disabledBySettings = true}, restricted},
        PolicyCase{"portal", {.disabledByPortal = true}, restricted},
        PolicyCase{"settingsBeforeHidden",
                   {.disabledBySettings = true, .chosenSourceHidden = true},
                   restricted},
        PolicyCase{
            "portalBeforeStore",
            {.disabledByPortal = true, .sandboxed = true, .stored = StoredPermission::granted},
            restricted},
        PolicyCase{"hidden", {.chosenSourceHidden = true}, denied},
        PolicyCase{
            "storeIgnoredOutsideASandbox", {.stored = StoredPermission::refused}, authorized},
        PolicyCase{"sandboxGranted", sandboxed(StoredPermission::granted), authorized},
        PolicyCase{"sandboxRefused", sandboxed(StoredPermission::refused), denied},
        PolicyCase{"sandboxUndecided", sandboxed(StoredPermission::undecided), notDetermined},
        PolicyCase{"sandboxGrantedButHidden", sandboxed(StoredPermission::granted, true), denied},
        PolicyCase{"sandboxAsksBeforeHidden", sandboxed(StoredPermission::undecided, true),
                   notDetermined}),
    [](const auto& test) { return test.param.name; });

TEST(StoredPermissionTest, usesTheFirstWord) {
    EXPECT_EQ(desktop::storedPermission({}), StoredPermission::undecided);
    EXPECT_EQ(desktop::storedPermission({"yes"}), StoredPermission::granted);
    EXPECT_EQ(desktop::storedPermission({"no"}), StoredPermission::refused);
    EXPECT_EQ(desktop::storedPermission({"no", "yes"}), StoredPermission::refused);
    EXPECT_EQ(desktop::storedPermission({"ask"}), StoredPermission::undecided);
    EXPECT_EQ(desktop::storedPermission({""}), StoredPermission::undecided);
}

} // namespace
} // namespace vantoro::testing
