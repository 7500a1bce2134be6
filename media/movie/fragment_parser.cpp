// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/fragment_parser.h"

#include <optional>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/boxes/marks.h"
#include "media/movie/fragment_checksum.h"

namespace vantoro::media {

namespace {

constexpr std::uint32_t maxPackets = 1U << 16U;
constexpr std::uint32_t maxPacketSize = 1U << 16U;

// The flag bits of optional fields.
namespace track_flag {
constexpr std::uint32_t baseOffset = 0x1;
constexpr std::uint32_t descriptionIndex = 0x2;
constexpr std::uint32_t duration = 0x8;
constexpr std::uint32_t size = 0x10;
} // namespace track_flag

namespace run_flag {
constexpr std::uint32_t offset = 0x1;
constexpr std::uint32_t firstFlags = 0x4;
constexpr std::uint32_t duration = 0x100;
constexpr std::uint32_t size = 0x200;
constexpr std::uint32_t flags = 0x400;
constexpr std::uint32_t composition = 0x800;
} // namespace run_flag

struct ByteRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

/// Parses one track's part of a fragment.
class TrackFragmentParser {
public:
    /// `described`: which tracks have had their part; the parser adds this one.
    TrackFragmentParser(std::uint64_t fragmentOffset, ByteRange data,
                        std::span<const TrackHeader> tracks, std::vector<bool>& described)
        : fragmentOffset_(fragmentOffset), data_(data), tracks_(tracks), described_(described) {}

    /// Nothing for a track that is not audio.
    std::optional<TrackFragment> parse(ByteSpan content) {
        BoxReader boxes(content);
        while (const auto box = boxes.next()) {
            ByteReader fields(box->content);
            if (box->type == boxType("tfhd")) {
                parseHeader(fields);
            } else if (box->type == boxType("tfdt")) {
                parseStart(fields);
            } else if (box->type == boxType("trun")) {
                parsePackets(fields);
            }
        }
        if (track_ == nullptr || !hasStart_) {
            throw DamagedMovie("a fragment's track is incomplete");
        }
        return track_->isAudio ? std::optional(std::move(part_)) : std::nullopt;
    }

private:
    void parseHeader(ByteReader& fields) {
        const std::uint32_t flags = fields.u32();
        const std::uint32_t id = fields.u32();
        const bool isKnown = track_ != nullptr;
        for (std::size_t index = 0; index < tracks_.size(); ++index) {
            if (tracks_[index].id == id) {
                track_ = &tracks_[index];
                part_.track = index;
            }
        }
        if (track_ == nullptr || (flags & track_flag::baseOffset) != 0) {
            throw DamagedMovie("a fragment belongs to no track");
        }
        // Otherwise a few bytes could name far more packets than memory holds.
        if (isKnown || described_[part_.track]) {
            throw DamagedMovie("a fragment holds a track twice");
        }
        described_[part_.track] = true;
        duration_ = track_->defaultDuration;
        size_ = track_->defaultSize;
        if ((flags & track_flag::descriptionIndex) != 0) {
            fields.skip(4);
        }
        if ((flags & track_flag::duration) != 0) {
            duration_ = fields.u32();
        }
        if ((flags & track_flag::size) != 0) {
            size_ = fields.u32();
        }
    }

    void parseStart(ByteReader& fields) {
        const std::uint32_t versionAndFlags = fields.u32();
        part_.start = versionAndFlags >> 24U == 0 ? fields.u32() : fields.u64();
        hasStart_ = true;
    }

    void parsePackets(ByteReader& fields) {
        const std::uint32_t flags = fields.u32();
        const std::uint32_t count = fields.u32();
        if (track_ == nullptr || count > maxPackets - part_.packets.size()) {
            throw DamagedMovie("a fragment has too many packets");
        }
        if ((flags & run_flag::offset) != 0) {
            const std::uint64_t begin = fragmentOffset_ + fields.u32();
            if (begin < next_) {
                throw DamagedMovie("packets overlap");
            }
            next_ = begin;
        }
        if ((flags & run_flag::firstFlags) != 0) {
            fields.skip(4);
        }
        for (std::uint32_t i = 0; i < count; ++i) {
            parsePacket(fields, flags);
        }
    }

    void parsePacket(ByteReader& fields, std::uint32_t flags) {
        PacketPlace packet{.offset = next_, .size = size_, .duration = duration_};
        if ((flags & run_flag::duration) != 0) {
            packet.duration = fields.u32();
        }
        if ((flags & run_flag::size) != 0) {
            packet.size = fields.u32();
        }
        fields.skip(((flags & run_flag::flags) != 0 ? 4U : 0U) +
                    ((flags & run_flag::composition) != 0 ? 4U : 0U));
        if (packet.size == 0 || packet.size > maxPacketSize || next_ < data_.begin ||
            next_ > data_.end || packet.size > data_.end - next_) {
            throw DamagedMovie("a packet does not lie inside its fragment");
        }
        next_ += packet.size;
        part_.packets.push_back(packet);
    }

    const std::uint64_t fragmentOffset_;
    const ByteRange data_;
    const std::span<const TrackHeader> tracks_;
    std::vector<bool>& described_;
    const TrackHeader* track_ = nullptr;
    bool hasStart_ = false;
    std::uint32_t duration_ = 0;
    std::uint32_t size_ = 0;
    std::uint64_t next_ = 0; // the next packet's offset
    TrackFragment part_;
};

} // namespace

Fragment readFragment(const InputFile& file, std::uint64_t offset,
                      std::span<const TrackHeader> tracks) {
    const FileBox description = readFileBox(file, offset);
    if (description.type != boxType("moof") ||
        description.end - description.content > maxDescriptionSize) {
        throw DamagedMovie("a fragment is missing");
    }
    const FileBox data = readFileBox(file, description.end);
    if (data.type != boxType("mdat")) {
        throw DamagedMovie("a fragment has no content");
    }
    std::vector<std::byte> bytes(description.end - description.content);
    readExactly(file, description.content, bytes);

    const auto checksum = readChecksum(file, data.end);
    Fragment fragment{.contentEnd = data.end,
                      .end = checksum ? checksum->end : data.end,
                      .checksum = checksum ? std::optional(checksum->value) : std::nullopt,
                      .parts = {},
                      .marks = {}};
    std::vector<bool> described(tracks.size());
    BoxReader boxes(bytes);
    while (const auto box = boxes.next()) {
        if (box->type == boxType("uuid")) {
            fragment.marks = readMarks(box->content);
        }
        if (box->type != boxType("traf")) {
            continue;
        }
        TrackFragmentParser parser(offset, {.begin = data.content, .end = data.end}, tracks,
                                   described);
        if (auto part = parser.parse(box->content)) {
            fragment.parts.push_back(std::move(*part));
        }
    }
    return fragment;
}

} // namespace vantoro::media
