// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/gio/gio_module.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): looked up by name
extern "C" const vantoro::desktop::GioModule vantoroGioModule{
    {.version = VANTORO_VERSION},
    vantoro::desktop::openWithDefaultApplication,
    vantoro::desktop::microphoneDisabledBySettings,
};
