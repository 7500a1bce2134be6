// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording_tags.h"
#include "media/codec/aac.h"

namespace vantoro::media {

/// One track, as the movie's header describes it.
struct TrackHeader {
    std::uint32_t id = 0;
    bool isAudio = false;
    std::uint32_t timescale = 0;       ///< units per second of the track's times
    std::uint32_t defaultDuration = 0; ///< of a packet, unless its fragment has another
    std::uint32_t defaultSize = 0;
    std::vector<std::byte> information; ///< content of the box with the codec, unparsed
};

/// The tracks that a movie's header describes. `content`: that of its box. Throws DamagedMovie if
/// track IDs repeat, there are more than 16 tracks, or an audio track is not at 48 kHz.
std::vector<TrackHeader> parseHeader(std::span<const std::byte> content);

/// A fragmented movie's tracks and whole fragments. Takes about 40 bytes per fragment and up to
/// 1 MiB of header.
///
/// A fragment is whole if it lies inside the file and each track continues in it exactly where it
/// ended. After damage, a fragment with a matching checksum counts too if the skipped bytes could
/// have held the packets that each track is missing; the track then has a gap.
struct MovieScan {
    std::vector<TrackHeader> tracks; ///< in file order, at most 16
    RecordingTags tags;              ///< empty if damaged or missing; marks of the whole fragments
    std::uint64_t headerEnd = 0;     ///< offset after the header
    std::vector<std::uint64_t> fragments; ///< offset of each whole fragment
    std::vector<std::int64_t> starts;     ///< fragments × tracks, in frames, including the priming
    std::vector<std::int64_t> ends;       ///< of each track, after the last whole fragment
    std::vector<bool> ended;              ///< whether a track had its last, short packet
    std::uint64_t fragmentsEnd = 0;       ///< offset after the last whole fragment, or the header
    std::uint64_t skipped = 0;            ///< damaged bytes before that

    std::span<const std::int64_t> startsOf(std::size_t fragment) const noexcept {
        return std::span(starts).subspan(fragment * tracks.size(), tracks.size());
    }
};

/// Each track's AAC parameters, in the scan's order; nothing for a track that is not AAC. Visits
/// each byte of the header at most a few times. Throws DamagedMovie if an AAC track's description
/// is invalid.
std::vector<std::optional<AacTrack>> readCodecs(const MovieScan& scan);

/// Scans an untrusted file up to the first fragment that does not follow the one before, in a time
/// bounded by the file's size and with little memory. Throws DamagedMovie if the file is not a
/// movie, and what the file throws.
MovieScan scanMovie(const InputFile& file);

/// Adds the fragments by which the file has grown.
void continueScan(const InputFile& file, MovieScan& scan);

/// How many damaged bytes to search for the next whole fragment: hours of sound.
inline constexpr std::uint64_t defaultReach = 1U << 30U;

/// Adds the fragments after damage, once those before it are scanned. Not for a file that is still
/// being written: an incomplete fragment looks damaged. Bounded as `scanMovie`.
void scanAfterDamage(const InputFile& file, MovieScan& scan, std::uint64_t reach = defaultReach);

/// Whether nothing but the movie's index follows the last whole fragment. An unfinished file
/// without an incomplete fragment counts too.
bool endsWithLastFragment(const InputFile& file, const MovieScan& scan);

} // namespace vantoro::media
