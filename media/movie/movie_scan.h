// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/ports/file_system.h"

namespace vantoro::media {

/// What a movie's header says about one track.
struct TrackHeader {
    std::uint32_t id = 0;
    bool isAudio = false;
    std::uint32_t timescale = 0;       ///< units a second of all the track's times
    std::uint32_t defaultDuration = 0; ///< of a packet, where its fragment does not say
    std::uint32_t defaultSize = 0;
    std::vector<std::byte> information; ///< content of the box that says how it is coded, unread
};

/// What a movie of fragments holds: where its whole fragments lie, and what begins where. Some 40
/// bytes a fragment, whatever is in the fragments, and no more of the header than its 1 MiB.
///
/// A fragment is whole when it lies inside the file and each track goes on in it just where it had
/// ended before. Behind damage, one counts as well whose checksum vouches for it, and in which each
/// track goes on at a time that it could have reached in the bytes between: there it has a gap.
struct MovieScan {
    std::vector<TrackHeader> tracks;      ///< in file order, at most 16
    std::uint64_t headerEnd = 0;          ///< the header lies before this offset
    std::vector<std::uint64_t> fragments; ///< offset of each whole fragment
    std::vector<std::int64_t> starts; ///< fragments × tracks: frames before it, the priming counted
    std::vector<std::int64_t> ends;   ///< of each track behind the last whole fragment
    std::vector<bool> ended;          ///< whether a track's last packet was short: none can follow
    std::uint64_t fragmentsEnd = 0;   ///< offset behind the last whole fragment, or the header
    std::uint64_t skipped = 0;        ///< damaged bytes before that

    std::span<const std::int64_t> startsOf(std::size_t fragment) const noexcept {
        return std::span(starts).subspan(fragment * tracks.size(), tracks.size());
    }
};

/// Looks through a file whose bytes nobody vouches for, in a time bounded by the file's size and in
/// little memory, as far as each fragment follows the one before. Throws DamagedMovie when there is
/// no movie in it at all, and what the file throws when it cannot be read.
MovieScan scanMovie(const InputFile& file);

/// Adds the fragments that the file, still being written, has become longer by since.
void continueScan(const InputFile& file, MovieScan& scan);

/// How many damaged bytes are looked through for the next whole fragment: hours of sound.
inline constexpr std::uint64_t longestSearch = 1U << 30U;

/// Adds the fragments behind damage, once those before it were scanned. Of a file that nobody
/// writes any more: what is half written looks damaged. Bounded as the scan is.
void scanBehindDamage(const InputFile& file, MovieScan& scan, std::uint64_t reach = longestSearch);

/// Whether nothing that might be sound lies behind the last whole fragment: the movie's index does
/// in a finished file, and nothing in one whose writer died between two fragments.
bool endsWithItsFragments(const InputFile& file, const MovieScan& scan);

} // namespace vantoro::media
