#include "app/live_line.h"

#include <gtest/gtest.h>

namespace vantoro {
namespace {

TEST(LiveLine, elapsedTimeIsAClock) {
    const std::pair<std::int64_t, const char*> table[] = {
        {0, "00:00"},       {75, "01:15"},       {3599, "59:59"},
        {3600, "01:00:00"}, {36125, "10:02:05"}, {360000, "100:00:00"},
    };
    for (const auto& [seconds, text] : table) {
        EXPECT_EQ(elapsedTimeText(seconds), text);
    }
}

TEST(LiveLine, showsTheLevelsOfTheSourcesThatAreOn) {
    EXPECT_EQ(recordingLine(5, 0.5F, 1.0F), "00:05  system [##########----------]  "
                                            "microphone [####################]");
    EXPECT_EQ(recordingLine(5, std::nullopt, 0.0F), "00:05  microphone [--------------------]");
    EXPECT_EQ(recordingLine(5, 0.0F, std::nullopt), "00:05  system [--------------------]");
}

TEST(LiveLine, savingIsAPercentage) {
    EXPECT_EQ(savingLine(0), "Saving 0 %");
    EXPECT_EQ(savingLine(0.426), "Saving 43 %");
    EXPECT_EQ(savingLine(1.2), "Saving 100 %");
}

} // namespace
} // namespace vantoro
