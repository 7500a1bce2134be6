// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/remote/program_choice.h"

#include <algorithm>
#include <utility>

#include "app/remote/remote_control.h"

namespace vantoro {

namespace {

std::pair<ProgramUse, std::int64_t> rank(const desktop::RunningProgram& program) {
    return {useOf(program), program.status ? program.status->startedAt : 0};
}

} // namespace

ProgramUse useOf(const desktop::RunningProgram& program) {
    using Case = RecordingState::Case;
    if (!program.status) {
        return ProgramUse::none;
    }
    const auto& state = program.status->state;
    if (state == controlWord(Case::preparing) || state == controlWord(Case::recording)) {
        return ProgramUse::recording;
    }
    return state == controlWord(Case::processing) ? ProgramUse::saving : ProgramUse::other;
}

const desktop::RunningProgram* chosenOf(const std::vector<desktop::RunningProgram>& programs) {
    const auto chosen = std::ranges::max_element(programs, {}, rank);
    return chosen == programs.end() || !chosen->status ? nullptr : &*chosen;
}

bool isOneSilent(const std::vector<desktop::RunningProgram>& programs) {
    return std::ranges::any_of(programs, [](const auto& program) { return !program.status; });
}

} // namespace vantoro
