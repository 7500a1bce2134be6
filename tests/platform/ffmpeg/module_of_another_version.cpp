// SPDX-License-Identifier: GPL-3.0-or-later

// Stands where the program's own module was, as after an update.

#include "platform/ffmpeg/toolkit_module.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): found by its name
extern "C" const vantoro::ffmpeg::ToolkitModule vantoroToolkitModule{
    {.version = "another version"},
    // NOLINTNEXTLINE(performance-unnecessary-value-param): as the module's is
    [](vantoro::FileSystem&, vantoro::IsPowerSaved) -> vantoro::MediaToolkit* { return nullptr; },
};
