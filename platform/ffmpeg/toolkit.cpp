// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/toolkit.h"

#include <utility>

extern "C" {
#include <libavutil/log.h>
}

#include "media/mix/recorded_movie.h"
#include "media/writing/movie_writer.h"
#include "platform/ffmpeg/ffmpeg_codec.h"

namespace vantoro::ffmpeg {

FfmpegToolkit::FfmpegToolkit(FileSystem& fileSystem, IsPowerSaved isPowerSaved)
    : fileSystem_(fileSystem), isPowerSaved_(std::move(isPowerSaved)) {
    av_log_set_level(AV_LOG_QUIET);
}

std::unique_ptr<RecordingWriter>
FfmpegToolkit::makeWriter(const std::filesystem::path& location, FragmentIntervals intervals,
                          FragmentWrittenCallback onFragmentWritten) {
    return std::make_unique<media::MovieWriter>(codec(), fileSystem_, location, intervals,
                                                std::move(onFragmentWritten), isPowerSaved_);
}

std::unique_ptr<Recording> FfmpegToolkit::openRecording(const std::filesystem::path& location) {
    return std::make_unique<media::RecordedMovie>(codec(), fileSystem_, location);
}

} // namespace vantoro::ffmpeg
