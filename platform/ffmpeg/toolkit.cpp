// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/toolkit.h"

#include <utility>

extern "C" {
#include <libavutil/log.h>
}

#include "platform/ffmpeg/aac_encoder.h"
#include "platform/ffmpeg/composition.h"
#include "platform/ffmpeg/mixing_export.h"
#include "platform/ffmpeg/movie_asset.h"
#include "platform/ffmpeg/movie_writer.h"

namespace vantoro::ffmpeg {

FfmpegToolkit::FfmpegToolkit(FileSystem& fileSystem, IsPowerSaved isPowerSaved)
    : fileSystem_(fileSystem),
      following_(std::make_shared<FollowingMixes>(std::move(isPowerSaved))) {
    av_log_set_level(AV_LOG_QUIET);
}

std::unique_ptr<FileWriter> FfmpegToolkit::makeWriter(const std::filesystem::path& location) {
    return std::make_unique<MovieWriter>(fileSystem_, location, following_);
}

std::unique_ptr<Asset> FfmpegToolkit::openAsset(const std::filesystem::path& location) {
    const auto following = following_->of(location);
    if (auto movie = following ? following->finishedMovie() : nullptr) {
        return std::make_unique<MovieAsset>(std::move(movie), MovieAsset::Origin::written);
    }
    return std::make_unique<MovieAsset>(openMovie(fileSystem_, location));
}

std::unique_ptr<Composition> FfmpegToolkit::makeComposition() {
    return std::make_unique<MovieComposition>();
}

std::unique_ptr<ExportSession> FfmpegToolkit::makeExportSession(const Composition& composition) {
    const auto* const movieComposition = dynamic_cast<const MovieComposition*>(&composition);
    if (movieComposition == nullptr || movieComposition->tracks().empty() ||
        !AacEncoder::isAvailable()) {
        return nullptr;
    }
    return std::make_unique<MixingExport>(*movieComposition, following_);
}

} // namespace vantoro::ffmpeg
