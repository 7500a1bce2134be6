// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/module/program_module.h"
#include "update/record_question.h"

namespace vantoro {

/// What the module has under `networkModuleName`: the way to whom the network leads to.
struct NetworkModule : ProgramModule {
    AskForRecord (*make)();
};

constexpr const char* networkModuleName = "vantoroNetworkModule";

/// Loads the module when somebody is first asked.
AskForRecord askOverLoadedNetwork();

} // namespace vantoro
