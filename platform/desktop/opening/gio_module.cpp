// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/opening/gio_module.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): found by its name
extern "C" const vantoro::desktop::GioModule vantoroGioModule{
    {.version = VANTORO_VERSION},
    vantoro::desktop::openWithDefaultApplication,
    vantoro::desktop::microphoneDisabledBySettings,
};
