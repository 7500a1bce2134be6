// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/desktop/gio/default_application.h"
#include "platform/desktop/gio/privacy_settings.h"
#include "platform/module/program_module.h"

namespace vantoro::desktop {

/// The module's entry under `gioModuleName`: this folder's functions, which use GIO.
struct GioModule : ProgramModule {
    decltype(&openWithDefaultApplication) open;
    decltype(&microphoneDisabledBySettings) microphoneDisabled;
};

constexpr const char* gioModuleName = "vantoroGioModule";

} // namespace vantoro::desktop
