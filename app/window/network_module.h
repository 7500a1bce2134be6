// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/module/program_module.h"
#include "update/record_question.h"

namespace vantoro {

/// The module's entry under `networkModuleName`; creates the function that asks over the network.
struct NetworkModule : ProgramModule {
    AskForRecord (*make)();
};

constexpr const char* networkModuleName = "vantoroNetworkModule";

} // namespace vantoro
