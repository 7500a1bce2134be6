// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/growing_mix.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <malloc.h>

#include "media/codec/aac.h"
#include "media/mix/parallel_encoding.h"
#include "media/movie/stopping.h"

namespace vantoro::media {

namespace {

std::unique_ptr<OutputFile> unnamedFileBeside(const std::filesystem::path& movie,
                                              FileSystem& fileSystem) {
    auto file = fileSystem.createUnnamed(movie.parent_path(), FileAudience::asUserPrefers);
    if (!file) {
        throw std::runtime_error("The file system does not support unnamed files.");
    }
    return file;
}

} // namespace

GrowingMix::GrowingMix(const AacCodec& codec, FileSystem& fileSystem,
                       const std::filesystem::path& movie, const std::vector<float>& volumes)
    : codec_(codec),
      fileSystem_(fileSystem),
      location_(movie),
      movie_(openGrowingMovie(fileSystem, movie)),
      unnamed_(unnamedFileBeside(movie, fileSystem)),
      file_(*unnamed_, makeMixEncoder(codec).track()),
      splicer_([this](std::span<const std::byte> packet) { file_.add(packet); }) {
    if (volumes.size() != movie_->scan.tracks.size()) {
        throw std::runtime_error("The tracks of the movie have changed.");
    }
    for (std::size_t track = 0; track < volumes.size(); ++track) {
        mix_.push_back(
            {.movie = movie_, .track = track, .frames = unknownFrames, .volume = volumes[track]});
    }
}

void GrowingMix::advance(const std::stop_token& stop) {
    const std::int64_t frames = readFragments();
    while (frames >= packetFrames && !stop.stop_requested()) {
        if (!encoder_) {
            encoder_.emplace(codec_, mix_, segment_);
        }
        encoder_->encode(frames, stop, [] {});
        if (!encoder_->isComplete()) {
            return;
        }
        spliceSegment();
        malloc_trim(0); // or fragmented memory grows with each encoder
        file_.sync();   // so that the end has little to wait for
    }
}

std::shared_ptr<const Movie> GrowingMix::finishedMovie() {
    readFragments();
    scanAfterDamage(*movie_->file, movie_->scan);
    return movie_;
}

/// Scans new fragments. Returns how many frames all tracks have.
std::int64_t GrowingMix::readFragments() {
    movie_->file = fileSystem_.open(location_);
    if (movie_->file->size() < movie_->scan.fragmentsEnd) {
        throw std::runtime_error("The recording file is shorter than before.");
    }
    continueScan(*movie_->file, movie_->scan);
    return std::ranges::min(movie_->scan.ends) - primingFrames;
}

std::unique_ptr<OutputFile> GrowingMix::complete(const Mix& mix, const RecordingTags& tags,
                                                 unsigned threads, const ExportProgress& progress,
                                                 const std::stop_token& stop) {
    readFragments();
    const auto isTheSame = [this](const MixedTrack& begun, const MixedTrack& wanted) {
        return wanted.track == begun.track && wanted.frames == framesIn(*movie_, begun.track) &&
               wanted.volume == begun.volume;
    };
    if (!std::ranges::equal(mix_, mix, isTheSame)) {
        throw std::runtime_error("The mix was requested with other settings.");
    }
    if (progress) {
        progress(0);
    }
    if (encoder_) {
        encoder_->setEnd(mix);
        encoder_->encode(framesOf(mix), stop, [] {});
        throwIfStopped(stop);
        spliceSegment();
    }
    encodeInParallel(codec_, mix, segment_, threads, splicer_, progress, stop);
    file_.finish(framesOf(mix), tags);
    return std::move(unnamed_);
}

void GrowingMix::spliceSegment() {
    splicer_.add(encoder_->take());
    encoder_.reset();
    ++segment_;
}

} // namespace vantoro::media
