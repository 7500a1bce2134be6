// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/desktop/opening/default_application.h"
#include "platform/desktop/permission/privacy_settings.h"
#include "platform/module/program_module.h"

namespace vantoro::desktop {

/// What the module has under `gioModuleName`: what only GIO can tell or do.
struct GioModule : ProgramModule {
    decltype(&openWithDefaultApplication) open;
    decltype(&microphoneDisabledBySettings) microphoneDisabled;
};

constexpr const char* gioModuleName = "vantoroGioModule";

} // namespace vantoro::desktop
