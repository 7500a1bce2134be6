// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/movie_scan.h"

#include <algorithm>
#include <utility>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/box_reader.h"
#include "platform/ffmpeg/fragment_parser.h"

namespace vantoro::ffmpeg {

namespace {

constexpr std::uint64_t largestHeader = 1U << 20U;
constexpr std::size_t mostTracks = 16;
constexpr int mostBoxesBeforeFragments = 16;
constexpr std::size_t mostFragments = 1U << 20U; // 120 days

constexpr std::uint32_t fieldsVersion(std::uint32_t versionAndFlags) noexcept {
    return versionAndFlags >> 24U;
}

/// Leaves out the two times at the beginning of several kinds of boxes.
void skipTimes(ByteReader& fields) {
    fields.skip(fieldsVersion(fields.u32()) == 0 ? 8 : 16);
}

void parseMedia(ByteSpan content, TrackHeader& track) {
    BoxReader boxes(content);
    while (const auto box = boxes.next()) {
        ByteReader fields(box->content);
        if (box->type == boxType("mdhd")) {
            skipTimes(fields);
            track.timescale = fields.u32();
        } else if (box->type == boxType("hdlr")) {
            fields.skip(8);
            track.isAudio = fields.u32() == boxType("soun");
        } else if (box->type == boxType("minf")) {
            track.information.assign(box->content.begin(), box->content.end());
        }
    }
}

TrackHeader parseTrack(ByteSpan content) {
    TrackHeader track;
    BoxReader boxes(content);
    while (const auto box = boxes.next()) {
        if (box->type == boxType("tkhd")) {
            ByteReader fields(box->content);
            skipTimes(fields);
            track.id = fields.u32();
        } else if (box->type == boxType("mdia")) {
            parseMedia(box->content, track);
        }
    }
    if (track.isAudio && track.timescale != framesPerSecond) {
        throw DamagedMovie("a track is not of 48000 Hz");
    }
    return track;
}

void parseDefaults(ByteSpan content, std::vector<TrackHeader>& tracks) {
    BoxReader boxes(content);
    while (const auto box = boxes.next()) {
        if (box->type != boxType("trex")) {
            continue;
        }
        ByteReader fields(box->content);
        fields.skip(4);
        const std::uint32_t id = fields.u32();
        fields.skip(4);
        const std::uint32_t duration = fields.u32();
        const std::uint32_t size = fields.u32();
        for (TrackHeader& track : tracks) {
            if (track.id == id) {
                track.defaultDuration = duration;
                track.defaultSize = size;
            }
        }
    }
}

std::vector<TrackHeader> parseHeader(ByteSpan content) {
    std::vector<TrackHeader> tracks;
    BoxReader boxes(content);
    while (const auto box = boxes.next()) {
        if (box->type == boxType("trak")) {
            TrackHeader track = parseTrack(box->content);
            const bool isKnown =
                std::ranges::find(tracks, track.id, &TrackHeader::id) != tracks.end();
            if (isKnown || tracks.size() == mostTracks) {
                throw DamagedMovie("its tracks cannot be told apart");
            }
            tracks.push_back(std::move(track));
        } else if (box->type == boxType("mvex")) {
            parseDefaults(box->content, tracks);
        }
    }
    return tracks;
}

/// Finds the header among the first boxes.
FileBox findHeader(const InputFile& file) {
    std::uint64_t offset = 0;
    for (int i = 0; i < mostBoxesBeforeFragments && offset < file.size(); ++i) {
        const FileBox box = readFileBox(file, offset);
        if (box.type == boxType("moov")) {
            return box;
        }
        offset = box.end;
    }
    throw DamagedMovie("it has no header");
}

/// How far the tracks have come, fragment by fragment.
class Progress {
public:
    explicit Progress(std::vector<std::int64_t> ends) : ends_(std::move(ends)) {
        for (const std::int64_t end : ends_) {
            ended_.push_back(end % packetFrames != 0);
        }
    }

    const std::vector<std::int64_t>& ends() const noexcept { return ends_; }

    /// Throws, and stays as it was, when a track does not go on where it had ended.
    void add(const Fragment& fragment) {
        Progress next = *this;
        std::size_t packets = 0;
        for (const PacketRow& row : fragment.rows) {
            next.add(row);
            packets += row.packets.size();
        }
        if (packets == 0) {
            throw DamagedMovie("a fragment is empty");
        }
        *this = next;
    }

private:
    void add(const PacketRow& row) {
        std::int64_t& end = ends_[row.track];
        if (row.start != static_cast<std::uint64_t>(end)) {
            throw DamagedMovie("a fragment does not follow the one before");
        }
        for (const PacketPlace& packet : row.packets) {
            // Only a track's last packet is short, so packets can be found by their number.
            if (ended_[row.track] || packet.duration > packetFrames) {
                throw DamagedMovie("a packet has an impossible duration");
            }
            ended_[row.track] = packet.duration < packetFrames;
            end += packet.duration;
        }
    }

    std::vector<std::int64_t> ends_;
    std::vector<bool> ended_;
};

} // namespace

MovieScan scanMovie(const InputFile& file) {
    const FileBox header = findHeader(file);
    if (header.end - header.content > largestHeader) {
        throw DamagedMovie("its header is too large");
    }
    std::vector<std::byte> bytes(header.end - header.content);
    readExactly(file, header.content, bytes);

    MovieScan scan;
    scan.tracks = parseHeader(bytes);
    scan.headerEnd = header.end;
    scan.fragmentsEnd = header.end;
    scan.ends.resize(scan.tracks.size());
    continueScan(file, scan);
    return scan;
}

void continueScan(const InputFile& file, MovieScan& scan) {
    Progress progress(scan.ends);
    try {
        while (scan.fragmentsEnd < file.size() && scan.fragments.size() < mostFragments) {
            const Fragment fragment = readFragment(file, scan.fragmentsEnd, scan.tracks);
            progress.add(fragment);
            scan.fragments.push_back(scan.fragmentsEnd);
            scan.starts.insert(scan.starts.end(), scan.ends.begin(), scan.ends.end());
            scan.ends = progress.ends();
            scan.fragmentsEnd = fragment.end;
        }
    } catch (const DamagedMovie&) { // NOLINT(bugprone-empty-catch)
        // The writer died here, or finished: all before is whole.
    }
}

} // namespace vantoro::ffmpeg
