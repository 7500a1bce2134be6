// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/growing_mix.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <malloc.h>

#include "media/coding/aac.h"
#include "media/mix/parallel_coding.h"
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

GrowingMix::GrowingMix(const Coding& coding, FileSystem& fileSystem,
                       const std::filesystem::path& movie, const std::vector<float>& volumes)
    : coding_(coding),
      fileSystem_(fileSystem),
      location_(movie),
      movie_(openGrowingMovie(fileSystem, movie)),
      unnamed_(unnamedFileBeside(movie, fileSystem)),
      file_(*unnamed_, makeMixCoder(coding).track()),
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
        if (!coder_) {
            coder_.emplace(coding_, mix_, segment_);
        }
        coder_->code(frames, stop, [] {});
        if (!coder_->isComplete()) {
            return;
        }
        splicer_.add(coder_->take());
        coder_.reset();
        ++segment_;
        malloc_trim(0); // or fragmented memory grows with each coder
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

std::unique_ptr<OutputFile> GrowingMix::complete(const Mix& mix, unsigned threads,
                                                 const ExportProgress& progress,
                                                 const std::stop_token& stop) {
    readFragments();
    check(mix);
    if (progress) {
        progress(0);
    }
    if (coder_) {
        completeSegment(*coder_, mix, stop);
    }
    codeInParallel(coding_, mix, segment_, threads, splicer_, progress, stop);
    file_.finish(framesOf(mix));
    return std::move(unnamed_);
}

void GrowingMix::check(const Mix& mix) const {
    const auto isTheSame = [this](const MixedTrack& begun, const MixedTrack& wanted) {
        return wanted.track == begun.track && wanted.frames == framesIn(*movie_, begun.track) &&
               wanted.volume == begun.volume;
    };
    if (!std::ranges::equal(mix_, mix, isTheSame)) {
        throw std::runtime_error("The mix was requested with other settings.");
    }
}

/// Completes the segment that was being coded when the movie ended.
void GrowingMix::completeSegment(SegmentCoder& coder, const Mix& mix, const std::stop_token& stop) {
    coder.setEnd(mix);
    coder.code(framesOf(mix), stop, [] {});
    throwIfStopped(stop);
    splicer_.add(coder.take());
    coder_.reset();
    ++segment_;
}

} // namespace vantoro::media
