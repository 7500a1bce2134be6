// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/program_choice.h"

#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using desktop::RunningProgram;

RunningProgram program(const std::string& name, const std::string& state, std::int64_t startedAt) {
    desktop::ControlStatus status;
    status.state = state;
    status.startedAt = startedAt;
    return {.service = name, .status = status};
}

const RunningProgram silent{.service = "silent", .status = std::nullopt};

TEST(ProgramChoiceTest, recordingComesBeforeSavingBeforeAnythingElseAndTheLatestFirst) {
    const struct {
        std::vector<RunningProgram> programs;
        std::string chosen;
    } cases[] = {
        {{}, "none"},
        {{silent}, "none"},
        {{silent, program("a", "idle", 0)}, "a"},
        {{program("a", "idle", 0), silent}, "a"},
        {{program("a", "completed", 9), program("b", "processing", 1)}, "b"},
        {{program("a", "processing", 9), program("b", "recording", 1)}, "b"},
        {{program("a", "processing", 9), program("b", "preparing", 1)}, "b"},
        {{program("a", "recording", 2), program("b", "recording", 1)}, "a"},
        {{program("a", "recording", 1), program("b", "recording", 2)}, "b"},
        {{program("a", "recording", 1), program("b", "preparing", 2)}, "b"},
        {{program("a", "processing", 2), program("b", "processing", 1)}, "a"},
        {{program("a", "failed", 2), program("b", "idle", 0)}, "a"},
        {{program("a", "recording", 1), program("b", "a state of tomorrow", 2)}, "a"},
    };

    for (const auto& [programs, chosen] : cases) {
        const auto* const found = chosenOf(programs);
        EXPECT_EQ(found == nullptr ? "none" : found->service, chosen);
    }
}

TEST(ProgramChoiceTest, programIsUsedByItsState) {
    const std::pair<const char*, ProgramUse> cases[] = {
        {"idle", ProgramUse::other},
        {"preparing", ProgramUse::recording},
        {"recording", ProgramUse::recording},
        {"processing", ProgramUse::saving},
        {"completed", ProgramUse::other},
        {"failed", ProgramUse::other},
        {"a state of tomorrow", ProgramUse::other},
    };
    for (const auto& [state, use] : cases) {
        EXPECT_EQ(useOf(program("a", state, 1)), use) << state;
    }
    EXPECT_EQ(useOf(silent), ProgramUse::none);
}

TEST(ProgramChoiceTest, oneThatDoesNotAnswerIsNoticed) {
    EXPECT_FALSE(isOneSilent({}));
    EXPECT_FALSE(isOneSilent({program("a", "idle", 0)}));
    EXPECT_TRUE(isOneSilent({program("a", "idle", 0), silent}));
}

} // namespace
} // namespace vantoro::testing
