// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <memory>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "engine/ports/power_saving.h"

namespace vantoro::ffmpeg {

/// Media files encoded with the FFmpeg libraries; all access goes through the given file system.
/// Switches the libraries' log off for the whole process: exceptions report the errors. What the
/// toolkit makes may outlive it, but not the file system.
class FfmpegToolkit final : public MediaToolkit {
public:
    explicit FfmpegToolkit(FileSystem& fileSystem, IsPowerSaved isPowerSaved = {});

    std::unique_ptr<RecordingWriter> makeWriter(const std::filesystem::path& location,
                                                FragmentIntervals intervals,
                                                FragmentWrittenCallback onFragmentWritten) override;
    std::unique_ptr<Recording> openRecording(const std::filesystem::path& location) override;

private:
    FileSystem& fileSystem_;
    IsPowerSaved isPowerSaved_;
};

} // namespace vantoro::ffmpeg
