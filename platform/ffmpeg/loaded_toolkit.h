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

/// An `FfmpegToolkit` that is loaded on first use. Thread-safe.
class LoadedToolkit final : public MediaToolkit {
public:
    /// `module`: the file to load it from. `fileSystem` outlives all that the toolkit makes.
    explicit LoadedToolkit(
        FileSystem& fileSystem, IsPowerSaved isPowerSaved = {},
        std::filesystem::path module = moduleBesideTheProgram("vantoro-media.so"));

    // Both also throw std::runtime_error if loading fails.
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
    std::unique_ptr<MediaToolkit> toolkit_; // set once, guarded by mutex_
};

} // namespace vantoro::ffmpeg
