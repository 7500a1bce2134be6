// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <span>

#include "capture/samples/frame_clock.h"
#include "capture/samples/mix_line.h"
#include "capture/samples/sound_piece.h"
#include "engine/recording_types.h"

namespace vantoro::capture {

/// Places the sound of several feeds on one grid: all system audio mixed (2 channels), and the
/// microphone (1 channel) beside it.
///
/// A feed's first piece lies at its stamp; then its frames are counted, since stamps jitter.
/// Silence fills a gap only if the count is behind the stamp by more than `tolerance`, and replaces
/// lost frames. Pieces never overlap. Pure silence is stretched or cut so that it and the sound
/// after it match their stamps: an output that begins to play may have another driver, whose cycles
/// lie differently.
class CaptureTimeline {
public:
    using FeedId = std::uint64_t;
    static constexpr std::int64_t tolerance = framesInMilliseconds(30);
    static constexpr std::int64_t toleranceInSilence = framesInMilliseconds(1);
    static constexpr std::int64_t patience = framesInMilliseconds(1000);
    static constexpr std::size_t blockFrames = 1024;

    /// One block of a source: planar (channels × frames), at its grid position.
    using Emit = std::function<void(AudioLevelSource source, std::int64_t position,
                                    std::span<const float> planes, std::size_t frames)>;

    /// Both sources start here; earlier sound is left out.
    void begin(std::int64_t position);

    /// `position`: now. For up to `patience`, what follows it waits for the feed's first piece.
    void addFeed(FeedId feed, AudioLevelSource source, std::int64_t position);
    /// Sound already placed stays.
    void removeFeed(FeedId feed);

    /// `planes` must have the source's channel count. Returns by how many frames the count is
    /// behind the stamp (negative: ahead), after the piece is placed.
    std::int64_t place(FeedId feed, const Stamp& stamp, Planes planes);

    /// Marks the feed's next frames as lost. Returns how many of them were not yet reported for the
    /// source: simultaneous losses on two outputs count once.
    std::int64_t lose(FeedId feed, std::int64_t frames);

    /// Both sources are complete up to here: the slowest feed that is within `patience`. The next
    /// piece may still cut the last one, if that is silent.
    std::int64_t horizon(std::int64_t now) const;
    /// Where a recording stopped now ends: at the furthest feed, or now if all are far behind.
    std::int64_t end(std::int64_t now) const;

    /// Emits whole blocks up to a position, alternating between the sources.
    void emitBlocks(std::int64_t upTo, const Emit& emit);
    /// Emits everything up to a position, with a shorter last block.
    void emitAll(std::int64_t upTo, const Emit& emit);

private:
    struct Feed {
        AudioLevelSource source;
        std::int64_t next; // position of its next frame by count
        std::int64_t soundEnd = std::numeric_limits<std::int64_t>::min(); // silent since then
        std::int64_t silentFrames = 0;                                    // of its last piece
        bool started = false;
    };

    MixLine& lineOf(AudioLevelSource source) { return lines_[static_cast<std::size_t>(source)]; }

    void emitBlock(std::size_t frames, const Emit& emit);

    std::array<MixLine, 2> lines_{MixLine(2), MixLine(1)};
    std::map<FeedId, Feed> feeds_;
    std::array<std::int64_t, 2> reportedLoss_{}; // by source: end of the reported loss
    std::int64_t begin_ = 0;
    std::int64_t emitted_ = 0; // everything before is emitted
};

} // namespace vantoro::capture
