// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/texts/progress_texts.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

TEST(ProgressTextsTest, existInEitherLanguageWithTheirArguments) {
    EXPECT_EQ(ProgressText::timeLeft.in(AppLanguage::english, {"1", "2"}), "1, 2 left");
    EXPECT_EQ(ProgressText::timeLeft.in(AppLanguage::chinese, {"1", "2"}), "1，剩余 2");
    EXPECT_EQ(ProgressText::salvage.in(AppLanguage::english, {"1"}),
              "Recovering interrupted recordings: 1");
    EXPECT_EQ(ProgressText::salvage.in(AppLanguage::chinese, {"1"}), "正在恢复中断的录音：1");
}

} // namespace
} // namespace vantoro::testing
