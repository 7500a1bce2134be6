// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/movie/movie_scan.h"

#include <array>

#include "media/boxes/box_reader.h"
#include "media/boxes/elementary_stream.h"

namespace vantoro::media {

namespace {

/// The first two bytes of a decoder's configuration.
struct AacConfiguration {
    bool isAac = false; // in packets of 1024 frames
    bool hasOurRate = false;
    int channels = 0; // 0 if invalid or specified elsewhere
};

/// A track's first sample description; the recorder's tracks have only one.
std::optional<Box> findDescription(ByteSpan information) {
    const auto tables = findBox(information, boxType("stbl"));
    const auto descriptions = tables ? findBox(*tables, boxType("stsd")) : std::nullopt;
    if (!descriptions) {
        return std::nullopt;
    }
    ByteReader fields(*descriptions);
    fields.skip(8); // version, flags, number of descriptions
    return BoxReader(fields.rest()).next();
}

/// The boxes after the fields of a sound description.
ByteSpan skipDescriptionFields(ByteSpan description) {
    ByteReader fields(description);
    fields.skip(8); // reserved, data reference index
    const unsigned version = fields.u16();
    fields.skip(18);
    // Later QuickTime versions have more fields.
    constexpr std::array<std::size_t, 3> moreFields{0, 16, 36};
    if (version >= moreFields.size()) {
        throw DamagedMovie("a track has an unknown description");
    }
    fields.skip(moreFields.at(version));
    return fields.rest();
}

ByteSpan findElementaryStream(ByteSpan boxesOfDescription) {
    BoxReader boxes(boxesOfDescription);
    while (const auto box = boxes.next()) {
        if (box->type == boxType("esds")) {
            return box->content;
        }
        if (box->type == boxType("wave")) {
            if (const auto stream = findBox(box->content, boxType("esds"))) {
                return *stream;
            }
        }
    }
    throw DamagedMovie("a track does not say how it is coded");
}

/// Whether this object type can be AAC: MPEG-4's or one of MPEG-2's three.
bool canBeAac(std::uint8_t type) noexcept {
    return type == 0x40 || (type >= 0x66 && type <= 0x68);
}

AacConfiguration readConfiguration(ByteSpan bytes) {
    const unsigned fields = ByteReader(bytes).u16();
    const unsigned kind = fields >> 11U;
    const unsigned rate = (fields >> 7U) & 15U;
    const unsigned channels = (fields >> 3U) & 15U;
    constexpr unsigned rateOf48000 = 3;
    constexpr std::array<int, 16> channelCounts{0, 1, 2, 3, 4, 5, 6, 8};
    return {.isAac = kind >= 1 && kind <= 4,
            .hasOurRate = rate == rateOf48000,
            .channels = channelCounts.at(channels)};
}

/// Nothing if the track is not AAC.
std::optional<AacTrack> readCodec(ByteSpan information) {
    const auto description = findDescription(information);
    if (!description || description->type != boxType("mp4a")) {
        return std::nullopt;
    }
    const ElementaryStream stream =
        readElementaryStream(findElementaryStream(skipDescriptionFields(description->content)));
    if (!canBeAac(stream.objectType)) {
        return std::nullopt;
    }
    const AacConfiguration configuration = readConfiguration(stream.configuration);
    if (!configuration.isAac) {
        return std::nullopt;
    }
    if (!configuration.hasOurRate) {
        throw DamagedMovie("a track is not of 48000 Hz");
    }
    if (configuration.channels == 0) {
        throw DamagedMovie("a track does not say how many channels it has");
    }
    return AacTrack{
        .channels = configuration.channels,
        .bitRate = static_cast<int>(stream.bitRate),
        .decoderConfiguration = {stream.configuration.begin(), stream.configuration.end()}};
}

} // namespace

std::vector<std::optional<AacTrack>> readCodecs(const MovieScan& scan) {
    std::vector<std::optional<AacTrack>> codecs;
    codecs.reserve(scan.tracks.size());
    for (const TrackHeader& track : scan.tracks) {
        codecs.push_back(track.isAudio ? readCodec(track.information) : std::nullopt);
    }
    return codecs;
}

} // namespace vantoro::media
