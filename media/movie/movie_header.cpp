// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/movie_scan.h"

#include <algorithm>
#include <utility>

#include "media/boxes/box_reader.h"
#include "media/codec/aac.h"

namespace vantoro::media {

namespace {

constexpr std::size_t maxTracks = 16;

constexpr std::uint32_t fieldsVersion(std::uint32_t versionAndFlags) noexcept {
    return versionAndFlags >> 24U;
}

/// Skips the version, flags and two times at the beginning of a box.
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

} // namespace

std::vector<TrackHeader> parseHeader(ByteSpan content) {
    std::vector<TrackHeader> tracks;
    BoxReader boxes(content);
    while (const auto box = boxes.next()) {
        if (box->type == boxType("trak")) {
            TrackHeader track = parseTrack(box->content);
            const bool isKnown =
                std::ranges::find(tracks, track.id, &TrackHeader::id) != tracks.end();
            if (isKnown || tracks.size() == maxTracks) {
                throw DamagedMovie("it has too many tracks, or two with the same number");
            }
            tracks.push_back(std::move(track));
        } else if (box->type == boxType("mvex")) {
            parseDefaults(box->content, tracks);
        }
    }
    return tracks;
}

} // namespace vantoro::media
