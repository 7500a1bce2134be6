// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/tasks/survey_task.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using ID = std::optional<std::string>;
using Devices = std::vector<AudioInputDevice>;

TEST(MicrophoneChoiceTest, keepsTheSelectedOneElseTakesTheDefaultElseTheFirst) {
    const Devices two{{"a", "A"}, {"b", "B"}};

    struct Row {
        ID selected;
        Devices microphones;
        ID systemDefault;
        ID choice;
    };

    for (const auto& row : {
             Row{"b", two, "a", "b"},
             Row{"b", two, std::nullopt, "b"},
             Row{"gone", two, "b", "b"},
             Row{"gone", two, std::nullopt, "a"},
             Row{"gone", {}, std::nullopt, std::nullopt},
             Row{"A", two, "b", "b"}, // a name is not an identifier
             Row{std::nullopt, two, "b", "b"},
             Row{std::nullopt, two, "unlisted", "unlisted"},
             Row{"gone", two, "unlisted", "unlisted"},
             Row{"unlisted", two, "a", "a"},
             Row{std::nullopt, {}, "unlisted", "unlisted"},
             Row{std::nullopt, two, std::nullopt, "a"},
             Row{std::nullopt, {}, std::nullopt, std::nullopt},
             Row{"", {{"", "Nameless"}}, "a", ""},
         }) {
        EXPECT_EQ(chooseMicrophone(row.selected, row.microphones, row.systemDefault), row.choice)
            << row.selected.value_or("(none)");
    }
}

} // namespace
} // namespace vantoro::testing
