// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

#include "capture/samples/frame_clock.h"
#include "capture/samples/mix_line.h"
#include "capture/samples/planes.h"
#include "capture/samples/stamped_ring.h"
#include "engine/recording_types.h"

namespace vantoro::capture {

/// Lays what several feeds captured onto one grid: all of the system's sound added up (2 channels),
/// and the microphone (1 channel) beside it.
///
/// A feed's first piece lies where its stamp says; after that its frames are counted, since stamps
/// tremble. Only when they are behind their stamps by more than `tolerance` does silence fill the
/// gap. Nothing ever overlaps: frames ahead of their stamps stay where the count puts them. Pure
/// silence, though, is made longer or shorter by what its stamps ask for. Where frames were lost
/// there is as much silence.
class CaptureTimeline {
public:
    using FeedId = std::uint64_t;
    static constexpr std::int64_t tolerance = framesInMilliseconds(30);
    static constexpr std::int64_t toleranceInSilence = framesInMilliseconds(1);
    static constexpr std::int64_t patience = framesInMilliseconds(1000);
    static constexpr std::size_t blockFrames = 1024;

    /// One block of a source: channel after channel (channels × frames), at its grid position.
    using Emit = std::function<void(AudioLevelSource source, std::int64_t position,
                                    std::span<const float> planes, std::size_t frames)>;

    /// Both sources begin here; what was captured before is left out.
    void begin(std::int64_t position);

    /// `position`: now. Nothing beyond is emitted before the feed's first piece, within patience.
    void addFeed(FeedId feed, AudioLevelSource source, std::int64_t position);
    /// What it captured stays.
    void removeFeed(FeedId feed);

    /// `planes`: of the feed's source's channel count. Returns by how many frames the count is
    /// behind the stamp (negative: ahead of it), once the piece has been placed.
    std::int64_t place(FeedId feed, const Stamp& stamp, Planes planes);

    /// The frames that the feed captured next are lost. Returns for how many no loss of the source
    /// was told before: what was played to two outputs at one time is lost once.
    std::int64_t lose(FeedId feed, std::int64_t frames);

    /// How far both sources are complete: as far as the slowest feed, where feeds that are more
    /// than `patience` behind now are not waited for.
    std::int64_t horizon(std::int64_t now) const;
    /// Where a recording that stops now ends: as far as any feed has come, or now where all are far
    /// behind.
    std::int64_t end(std::int64_t now) const;

    /// Emits whole blocks up to a position, both sources in turn.
    void emitBlocks(std::int64_t upTo, const Emit& emit);
    /// Emits everything up to a position, the last block as short as it must be.
    void emitAll(std::int64_t upTo, const Emit& emit);

private:
    struct Feed {
        AudioLevelSource source;
        std::int64_t next; // where its next frame is counted to lie
        bool started = false;
    };

    MixLine& lineOf(AudioLevelSource source) { return lines_[static_cast<std::size_t>(source)]; }

    void emitBlock(std::size_t frames, const Emit& emit);

    std::array<MixLine, 2> lines_{MixLine(2), MixLine(1)};
    std::map<FeedId, Feed> feeds_;
    std::array<std::int64_t, 2> lossTold_{}; // by source: how far loss was told
    std::int64_t begin_ = 0;
    std::int64_t emitted_ = 0; // everything before has been emitted
};

} // namespace vantoro::capture
