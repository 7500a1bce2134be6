// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/toolkit_module.h"

#include <utility>

#include "platform/ffmpeg/toolkit.h"

// NOLINTNEXTLINE(misc-use-internal-linkage): looked up by name
extern "C" const vantoro::ffmpeg::ToolkitModule vantoroToolkitModule{
    {.version = VANTORO_VERSION},
    [](vantoro::FileSystem& fileSystem,
       vantoro::IsPowerSaved isPowerSaved) -> vantoro::MediaToolkit* {
        return new vantoro::ffmpeg::FfmpegToolkit(fileSystem, std::move(isPowerSaved));
    },
};
