// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "engine/ports/power_saving.h"
#include "platform/module/program_module.h"

namespace vantoro::ffmpeg {

/// An `FfmpegToolkit` that is loaded when it is first used. As the toolkit it may be used by
/// several threads.
class LoadedToolkit final : public MediaToolkit {
public:
    /// `module`: the file to load it from. `fileSystem` outlives whatever the toolkit makes.
    explicit LoadedToolkit(
        FileSystem& fileSystem, IsPowerSaved isPowerSaved = {},
        std::filesystem::path module = moduleBesideTheProgram("vantoro-media.so"));

    // Both throw std::runtime_error too, when it cannot be loaded.
    std::unique_ptr<RecordingWriter> makeWriter(const std::filesystem::path& location,
                                                FragmentIntervals intervals,
                                                FragmentWrittenCallback onFragmentWritten) override;
    std::unique_ptr<Recording> openRecording(const std::filesystem::path& location) override;

private:
    MediaToolkit& loaded();

    FileSystem& fileSystem_;
    IsPowerSaved isPowerSaved_;
    std::filesystem::path module_;
    std::mutex mutex_;
    std::unique_ptr<MediaToolkit> toolkit_; // guarded by mutex_ until it is there, and then stays
};

} // namespace vantoro::ffmpeg
