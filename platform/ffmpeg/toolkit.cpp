// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/toolkit.h"

#include <utility>

extern "C" {
#include <libavutil/log.h>
}

#include "media/mix/composition.h"
#include "media/mix/mixing_export.h"
#include "media/movie/movie_asset.h"
#include "media/writing/movie_writer.h"
#include "platform/ffmpeg/ffmpeg_coding.h"

namespace vantoro::ffmpeg {

FfmpegToolkit::FfmpegToolkit(FileSystem& fileSystem, IsPowerSaved isPowerSaved)
    : fileSystem_(fileSystem),
      following_(std::make_shared<media::FollowingMixes>(coding(), std::move(isPowerSaved))) {
    av_log_set_level(AV_LOG_QUIET);
}

std::unique_ptr<FileWriter> FfmpegToolkit::makeWriter(const std::filesystem::path& location) {
    return std::make_unique<media::MovieWriter>(coding(), fileSystem_, location, following_);
}

std::unique_ptr<Asset> FfmpegToolkit::openAsset(const std::filesystem::path& location) {
    const auto following = following_->of(location);
    if (auto movie = following ? following->finishedMovie() : nullptr) {
        return std::make_unique<media::MovieAsset>(std::move(movie),
                                                   media::MovieAsset::Origin::written);
    }
    return std::make_unique<media::MovieAsset>(media::openMovie(fileSystem_, location));
}

std::unique_ptr<Composition> FfmpegToolkit::makeComposition() {
    return std::make_unique<media::MovieComposition>();
}

std::unique_ptr<ExportSession> FfmpegToolkit::makeExportSession(const Composition& composition) {
    const auto* const movieComposition = dynamic_cast<const media::MovieComposition*>(&composition);
    if (movieComposition == nullptr || movieComposition->tracks().empty() || !coding().hasCoder()) {
        return nullptr;
    }
    return std::make_unique<media::MixingExport>(coding(), *movieComposition, following_);
}

} // namespace vantoro::ffmpeg
