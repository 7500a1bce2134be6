// SPDX-License-Identifier: GPL-3.0-or-later

// Replaces the program's module, as after an update.

#include "platform/ffmpeg/toolkit_module.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): looked up by name
extern "C" const vantoro::ffmpeg::ToolkitModule vantoroToolkitModule{
    {.version = "another version"},
    // NOLINTNEXTLINE(performance-unnecessary-value-param): the module's signature
    [](vantoro::FileSystem&, vantoro::IsPowerSaved) -> vantoro::MediaToolkit* { return nullptr; },
};
