// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/recorded_movie.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include "engine/failure.h"
#include "engine/recording_types.h"
#include "media/m4a/m4a_file.h"
#include "media/m4a/packet_repair.h"
#include "media/mix/encoded_segment.h"
#include "media/mix/parallel_encoding.h"

namespace vantoro::media {

namespace {

/// The only track with sound, if re-encoding it would only lose quality.
const MixedTrack* unchangedTrack(const Mix& mix, const std::stop_token& stop) {
    const auto hasSound = [](const MixedTrack& track) { return track.frames > 0; };
    const auto only = std::ranges::find_if(mix, hasSound);
    const bool isUnchanged = std::ranges::count_if(mix, hasSound) == 1 && only->volume == 1.0F &&
                             isIntact(*only->movie, stop);
    return isUnchanged ? &*only : nullptr;
}

} // namespace

RecordedMovie::RecordedMovie(const AacCodec& codec, FileSystem& fileSystem,
                             const std::filesystem::path& location,
                             std::shared_ptr<FollowingMix> following)
    : codec_(codec),
      following_(std::move(following)),
      movie_(following_ ? following_->finishedMovie() : nullptr),
      isJustWritten_(movie_ != nullptr) {
    if (!movie_) {
        movie_ = openMovie(fileSystem, location);
    }
    tracks_ = audioTracks(*movie_);
}

MediaTime RecordedMovie::duration() const {
    if (tracks_.empty()) {
        return {};
    }
    std::int64_t longest = 0;
    for (const std::size_t track : tracks_) {
        longest = std::max(longest, framesIn(*movie_, track));
    }
    return {.value = longest, .timescale = framesPerSecond};
}

bool RecordedMovie::isWhole() const noexcept {
    return isJustWritten_ ? isUnbroken(*movie_) : media::isWhole(*movie_);
}

std::unique_ptr<OutputFile> RecordedMovie::mix(const std::vector<float>& volumes,
                                               const std::string& title, OutputFile& staging,
                                               const ExportProgress& progress,
                                               const std::stop_token& stop) {
    if (!codec_.hasEncoder()) {
        throw RecordingError(RecordingError::Case::exportFailed);
    }
    const Mix mix = mixAt(volumes);
    const RecordingTags tags = tagsOr(title, framesOf(mix));
    std::unique_ptr<OutputFile> madeAhead;
    if (const MixedTrack* const track = unchangedTrack(mix, stop)) {
        M4aFile file(staging, *movie_->codecs[track->track], track->frames);
        copyPackets(movie_, track->track, track->frames, nullptr, file, progress, stop);
        file.finish(track->frames, tags);
    } else {
        madeAhead = mixInto(staging, mix, tags, progress, stop);
    }
    if (progress) {
        progress(1.0);
    }
    return madeAhead;
}

int RecordedMovie::channelsOf(std::size_t track) const {
    return movie_->codecs[tracks_.at(track)]->channels;
}

void RecordedMovie::copyTrack(std::size_t track, const TrackTitle& title, OutputFile& staging,
                              const ExportProgress& progress, const std::stop_token& stop) {
    const std::size_t index = tracks_.at(track);
    const AacTrack& coding = *movie_->codecs[index];
    const std::int64_t frames = framesIn(*movie_, index);
    if (frames == 0) {
        throw Failure(FailureCode::noSoundWritten);
    }
    std::optional<PacketRepair> repair;
    if (!isJustWritten_ && !isIntact(*movie_, stop)) {
        repair.emplace(codec_, coding);
    }
    RecordingTags tags = tagsOr(title.title, frames);
    tags.title += title.suffix;
    M4aFile file(staging, coding, frames);
    copyPackets(movie_, index, frames, repair ? &*repair : nullptr, file, progress, stop);
    file.finish(frames, tags);
}

Mix RecordedMovie::mixAt(const std::vector<float>& volumes) const {
    const auto isFinite = [](float volume) { return std::isfinite(volume); };
    if (volumes.size() != tracks_.size() || !std::ranges::all_of(volumes, isFinite)) {
        throw std::invalid_argument("A track cannot have this volume.");
    }
    Mix mix;
    for (std::size_t index = 0; index < tracks_.size(); ++index) {
        const std::size_t track = tracks_[index];
        mix.push_back({movie_, track, framesIn(*movie_, track), volumes[index]});
    }
    return mix;
}

/// The movie's tags, with this title if they have none, for a file of this length.
RecordingTags RecordedMovie::tagsOr(const std::string& title, std::int64_t frames) const {
    RecordingTags tags = movie_->scan.tags;
    for (RecordingMark& mark : tags.marks) {
        const MediaTime last{.value = std::max<std::int64_t>(frames - 1, 0),
                             .timescale = framesPerSecond};
        mark.time = mark.time < last ? mark.time : last;
    }
    if (tags.title.empty()) {
        tags.title = title;
    }
    return tags;
}

/// Null if the mix is in `staging`.
std::unique_ptr<OutputFile> RecordedMovie::mixInto(OutputFile& staging, const Mix& mix,
                                                   const RecordingTags& tags,
                                                   const ExportProgress& progress,
                                                   const std::stop_token& stop) {
    const std::int64_t frames = framesOf(mix);
    const unsigned threads = std::thread::hardware_concurrency();
    if (frames == 0) {
        throw std::runtime_error("There is no sound to export.");
    }
    // Progress may start twice if the mix made ahead fails.
    double reported = -1;
    const ExportProgress rising = [&](double done) {
        if (progress && done > reported) {
            progress(done);
            reported = done;
        }
    };
    if (following_) {
        if (auto complete = following_->complete(mix, tags, threads, rising, stop)) {
            return complete;
        }
    }
    M4aFile file(staging, makeMixEncoder(codec_).track(), frames);
    SegmentSplicer splicer([&file](std::span<const std::byte> packet) { file.add(packet); });
    encodeInParallel(codec_, mix, 0, threads, splicer, rising, stop);
    file.finish(frames, tags);
    return nullptr;
}

} // namespace vantoro::media
