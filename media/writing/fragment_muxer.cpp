// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/fragment_muxer.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "media/movie/fragment_checksum.h"

namespace vantoro::media {

void FragmentMuxer::addTrack(AacTrack description) {
    tracks_.emplace_back();
    descriptions_.push_back(std::move(description));
    index_.emplace_back();
}

void FragmentMuxer::add(std::size_t track, AacPacket packet) {
    tracks_[track].end = packet.start + packet.frames;
    tracks_[track].packets.push_back(std::move(packet));
}

bool FragmentMuxer::hasContent() const noexcept {
    return !marks_.empty() ||
           std::ranges::any_of(tracks_, [](const Track& track) { return !track.packets.empty(); });
}

std::vector<std::byte> FragmentMuxer::closeFragment(std::int64_t end) {
    auto bytes = fragments_ == 0 ? movieHeader(descriptions_, tags_) : std::vector<std::byte>();
    std::vector<FragmentTrack> parts;
    for (std::size_t index = 0; index < tracks_.size(); ++index) {
        auto& packets = tracks_[index].packets;
        const auto last = std::ranges::find_if(
            packets, [end](const AacPacket& packet) { return packet.start >= end; });
        if (last == packets.begin()) {
            continue;
        }
        index_[index].push_back({.time = std::max<std::int64_t>(0, packets.front().start),
                                 .offset = size_ + bytes.size()});
        parts.push_back(
            {.number = static_cast<std::uint32_t>(index + 1),
             .packets = {std::move_iterator(packets.begin()), std::move_iterator(last)}});
        packets.erase(packets.begin(), last);
    }
    const auto fragment = movieFragment(++fragments_, parts, std::exchange(marks_, {}));
    const auto checksum = checksumBox(fragment);
    bytes.insert(bytes.end(), fragment.begin(), fragment.end());
    bytes.insert(bytes.end(), checksum.begin(), checksum.end());
    size_ += bytes.size();
    return bytes;
}

} // namespace vantoro::media
