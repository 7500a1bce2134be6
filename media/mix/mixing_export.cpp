// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/mix/mixing_export.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <utility>

#include "media/m4a/m4a_file.h"
#include "media/m4a/packet_copy.h"
#include "media/mix/coded_chunk.h"
#include "media/mix/parallel_coding.h"
#include "media/movie/movie_asset.h"

namespace vantoro::media {

void MixingExport::setAudioMix(AudioMix mix) {
    for (const AudioMixInput& input : mix) {
        if (!std::isfinite(input.volume) || input.time != zeroTime) {
            throw std::invalid_argument("A track cannot have this volume.");
        }
    }
    mix_ = std::move(mix);
}

std::unique_ptr<OutputFile> MixingExport::exportTo(OutputFile& staging,
                                                   const ExportProgress& progress,
                                                   const std::stop_token& stop) {
    std::unique_ptr<OutputFile> madeAhead;
    if (const MovieCompositionTrack* const track = unchangedTrack(stop)) {
        const MovieTrack& source = *track->source();
        M4aFile file(staging, *source.movie()->codecs[source.index()], track->frames());
        copyPackets(source, track->frames(), file, progress, stop);
        file.finish(track->frames());
    } else {
        madeAhead = mixInto(staging, progress, stop);
    }
    if (progress) {
        progress(1.0);
    }
    return madeAhead;
}

/// The only track there is, when coding it again would change nothing but its quality.
const MovieCompositionTrack* MixingExport::unchangedTrack(const std::stop_token& stop) const {
    const MovieCompositionTrack* only = nullptr;
    for (const auto& track : composition_.tracks()) {
        if (track->source() != nullptr && track->frames() > 0) {
            if (only != nullptr) {
                return nullptr;
            }
            only = track.get();
        }
    }
    const bool isUnchanged = only != nullptr && only->start() == 0 && volumeOf(*only) == 1.0F &&
                             isIntact(*only->source()->movie(), stop);
    return isUnchanged ? only : nullptr;
}

Mix MixingExport::mixOfTracks() const {
    Mix mix;
    for (const auto& track : composition_.tracks()) {
        if (track->source() != nullptr) {
            mix.push_back({.source = track->source(),
                           .start = track->start(),
                           .frames = track->frames(),
                           .volume = volumeOf(*track)});
        }
    }
    return mix;
}

/// Null where the mix is in `staging`.
std::unique_ptr<OutputFile> MixingExport::mixInto(OutputFile& staging,
                                                  const ExportProgress& progress,
                                                  const std::stop_token& stop) {
    const Mix mix = mixOfTracks();
    const std::int64_t frames = framesOf(mix);
    if (frames == 0) {
        throw std::runtime_error("There is no sound to export.");
    }
    // It may begin twice, where what was made ahead is of no use.
    double reported = -1;
    const ExportProgress rising = [&](double done) {
        if (progress && done > reported) {
            progress(done);
            reported = done;
        }
    };
    if (const auto ahead = following_->of(mix.front().source->movie()->location)) {
        if (auto complete = ahead->complete(mix, threads_, rising, stop)) {
            return complete;
        }
    }
    M4aFile file(staging, makeMixCoder(coding_).track(), frames);
    ChunkSplicer splicer([&file](std::span<const std::byte> packet) { file.add(packet); });
    codeInParallel(coding_, mix, 0, threads_, splicer, rising, stop);
    file.finish(frames);
    return nullptr;
}

float MixingExport::volumeOf(const CompositionTrack& track) const noexcept {
    const auto input = std::ranges::find(mix_, &track, &AudioMixInput::track);
    return input == mix_.end() ? 1.0F : input->volume;
}

} // namespace vantoro::media
