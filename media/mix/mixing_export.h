// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>
#include <stop_token>
#include <thread>
#include <utility>

#include "engine/ports/file_system.h"
#include "engine/ports/media_toolkit.h"
#include "media/mix/composition.h"
#include "media/mix/following_mix.h"
#include "media/mix/mixer.h"

namespace vantoro::media {

/// Mixes a composition's tracks into a stereo M4A file of 256 kb/s, as long as the longest track to
/// the sample; a single track whose volume stays 1 is copied instead. The sum is limited to full
/// scale only where it is coded. Needs the same memory for any length, but for two bytes a packet.
class MixingExport final : public ExportSession {
public:
    /// Of a composition that outlives the session. A mix that followed the recording is only
    /// completed. So many threads mix, of which the file tells nothing.
    MixingExport(const Coding& coding, const MovieComposition& composition,
                 std::shared_ptr<FollowingMixes> following,
                 unsigned threads = std::thread::hardware_concurrency())
        : coding_(coding),
          composition_(composition),
          following_(std::move(following)),
          threads_(threads) {}

    /// A track without an entry keeps its volume. Throws std::invalid_argument for a volume that is
    /// no finite number, or one that does not hold from the beginning.
    void setAudioMix(AudioMix mix) override;

    /// Throws std::runtime_error for a composition without sound, DamagedMovie for a source that
    /// was changed meanwhile, and what the files throw.
    std::unique_ptr<OutputFile> exportTo(OutputFile& staging, const ExportProgress& progress,
                                         const std::stop_token& stop) override;

private:
    const MovieCompositionTrack* unchangedTrack(const std::stop_token& stop) const;
    Mix mixOfTracks() const;
    std::unique_ptr<OutputFile> mixInto(OutputFile& staging, const ExportProgress& progress,
                                        const std::stop_token& stop);
    float volumeOf(const CompositionTrack& track) const noexcept;

    const Coding& coding_;
    const MovieComposition& composition_;
    std::shared_ptr<FollowingMixes> following_;
    unsigned threads_;
    AudioMix mix_;
};

} // namespace vantoro::media
