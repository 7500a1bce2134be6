#pragma once

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"

namespace vantoro::ffmpeg {

/// What the module has under `toolkitModuleName`: which version it belongs to, for an update may
/// replace the file under a program that runs, and the way to a toolkit.
struct ToolkitModule {
    const char* version;
    /// Throws as `FfmpegToolkit`'s constructor; the caller owns what it returns.
    MediaToolkit* (*make)(FileSystem& fileSystem);
};

constexpr const char* toolkitModuleName = "vantoroToolkitModule";

} // namespace vantoro::ffmpeg
