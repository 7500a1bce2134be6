// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/doctor_findings.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(DoctorFindingsTest, argumentsAreInsertedUnchanged) {
    EXPECT_EQ(DoctorFinding::folderSpace.in(AppLanguage::english, {"/%2/%1", "1 %"}),
              "Recording folder: /%2/%1, 1 % free");
    EXPECT_EQ(DoctorFinding::outputs.in(AppLanguage::chinese, {"3"}), "输出设备：3 个");
    EXPECT_EQ(DoctorFinding::microphone.in(AppLanguage::english), "Microphone: %1");
}

} // namespace
} // namespace vantoro::testing
