// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "engine/ports/power_saving.h"
#include "platform/module/program_module.h"

namespace vantoro::ffmpeg {

/// The module's symbol `toolkitModuleName`, which makes a toolkit.
struct ToolkitModule : ProgramModule {
    /// Throws as `FfmpegToolkit`'s constructor; the caller owns the result.
    MediaToolkit* (*make)(FileSystem& fileSystem, IsPowerSaved isPowerSaved);
};

constexpr const char* toolkitModuleName = "vantoroToolkitModule";

} // namespace vantoro::ffmpeg
