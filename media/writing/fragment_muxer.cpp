// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/fragment_muxer.h"

#include <algorithm>
#include <limits>
#include <span>
#include <stdexcept>
#include <utility>

#include "media/coding/aac.h"
#include "media/movie/fragment_checksum.h"

namespace vantoro::media {

namespace {

void append(std::vector<std::byte>& target, std::span<const std::byte> bytes) {
    target.insert(target.end(), bytes.begin(), bytes.end());
}

/// The packet's start, counted from the priming.
std::int64_t timeOf(const AacPacket& packet) {
    return packet.start + primingFrames;
}

} // namespace

void FragmentMuxer::addTrack(AacTrack description) {
    tracks_.push_back({.description = std::move(description), .packets = {}, .fragments = {}});
}

void FragmentMuxer::add(std::size_t track, AacPacket packet) {
    tracks_[track].end = packet.start + packet.frames;
    tracks_[track].packets.push_back(std::move(packet));
}

bool FragmentMuxer::hasPackets() const noexcept {
    return std::ranges::any_of(tracks_, [](const Track& track) { return !track.packets.empty(); });
}

std::vector<std::byte> FragmentMuxer::header() const {
    std::vector<AacTrack> descriptions;
    std::ranges::transform(tracks_, std::back_inserter(descriptions), &Track::description);
    return movieHeader(descriptions);
}

std::vector<std::byte> FragmentMuxer::closeFragment(std::int64_t end) {
    auto bytes = fragments_ == 0 ? header() : std::vector<std::byte>();
    const std::size_t begin = bytes.size();
    std::vector<FragmentTrack> parts;
    std::vector<std::byte> content;
    for (std::uint32_t number = 1; Track & track : tracks_) {
        const auto last = std::ranges::find_if(
            track.packets, [end](const AacPacket& packet) { return packet.start >= end; });
        if (last != track.packets.begin()) {
            auto& part = parts.emplace_back();
            part.number = number;
            part.time = timeOf(track.packets.front());
            for (const auto& packet : std::span(track.packets.begin(), last)) {
                append(content, std::as_bytes(std::span(packet.bytes)));
                part.packets.push_back({.bytes = static_cast<std::uint32_t>(packet.bytes.size()),
                                        .frames = static_cast<std::uint32_t>(packet.frames)});
            }
            track.fragments.push_back({.time = std::max<std::int64_t>(0, part.time - primingFrames),
                                       .offset = size_ + begin});
            track.packets.erase(track.packets.begin(), last);
        }
        ++number;
    }
    if (content.size() > std::numeric_limits<std::uint32_t>::max() / 2) {
        throw std::runtime_error("A fragment is too large for its size field.");
    }
    append(bytes, fragmentHeader(++fragments_, parts));
    append(bytes, content);
    append(bytes, checksumBox(std::span(bytes).subspan(begin)));
    size_ += bytes.size();
    return bytes;
}

std::vector<std::byte> FragmentMuxer::finish() const {
    std::vector<std::vector<FragmentEntry>> entries;
    std::ranges::transform(tracks_, std::back_inserter(entries), &Track::fragments);
    return fragmentIndex(entries);
}

} // namespace vantoro::media
