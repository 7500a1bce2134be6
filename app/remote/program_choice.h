// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <vector>

#include "platform/desktop/remote/control_client.h"

namespace vantoro {

/// What the commands make of the running programs.
enum class ProgramUse : std::uint8_t {
    none,      ///< no program answers
    other,     ///< it neither records nor saves
    saving,    ///< it saves a recording
    recording, ///< it records, or is about to
};

ProgramUse useOf(const desktop::RunningProgram& program);

/// The program that the commands mean: one that records rather than one that saves, and that rather
/// than another; of several, the one that started its recording last. Null if none answers.
const desktop::RunningProgram* chosenOf(const std::vector<desktop::RunningProgram>& programs);

/// Whether one does not answer.
bool isOneSilent(const std::vector<desktop::RunningProgram>& programs);

} // namespace vantoro
