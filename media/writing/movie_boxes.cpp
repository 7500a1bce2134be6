// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/writing/movie_boxes.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "media/boxes/box_writer.h"
#include "media/boxes/elementary_stream.h"
#include "media/boxes/marks.h"
#include "media/boxes/tags.h"
#include "media/codec/aac.h"

namespace vantoro::media {

namespace {

/// Writes everything before the first fragment. The fragments give the durations.
class HeaderWriter {
public:
    explicit HeaderWriter(const RecordingTags& tags) : tags_(tags) {}

    std::vector<std::byte> write(std::span<const AacTrack> tracks) {
        out_.box("ftyp", [this] {
            out_.text("qt  ");
            out_.u32(0x200);
            out_.text("qt  ");
        });
        out_.box("moov", [&] {
            movie();
            writeTags(out_, tags_);
            for (std::uint32_t number = 1; const AacTrack& track : tracks) {
                out_.box("trak", [&] { this->track(number, track); });
                ++number;
            }
            out_.box("mvex", [&] {
                for (std::uint32_t number = 1; number <= tracks.size(); ++number) {
                    out_.fullBox("trex", 0, [&] {
                        out_.u32(number);
                        out_.u32(1);     // sample description index
                        out_.zeros(12U); // the fragments have the values
                    });
                }
            });
        });
        return out_.take();
    }

private:
    /// Of creation and modification, none if it does not fit.
    void times() {
        const std::uint64_t created = boxTime(tags_.start);
        const bool fits = created <= std::numeric_limits<std::uint32_t>::max();
        out_.u32(fits ? created : 0);
        out_.u32(fits ? created : 0);
    }

    void movie() {
        out_.fullBox("mvhd", 0, [this] {
            times();
            out_.u32(framesPerSecond);
            out_.u32(0);             // duration
            out_.u32(fixedPointOne); // speed
            out_.u16(0x100);         // volume
            out_.zeros(10);
            out_.unityMatrix();
            out_.zeros(24);
            out_.u32(2); // next track number
        });
    }

    void track(std::uint32_t number, const AacTrack& track) {
        // Used in the movie; only the first is enabled, for players that play one track.
        out_.fullBox("tkhd", number == 1 ? 3 : 2, [&] {
            times();
            out_.u32(number);
            out_.zeros(4 + 4 + 8); // and duration
            out_.u16(0);
            out_.u16(1);     // one alternate group for all tracks
            out_.u16(0x100); // volume
            out_.u16(0);
            out_.unityMatrix();
            out_.zeros(8);
        });
        out_.box("edts", [this] {
            out_.fullBox("elst", 0, [this] { // playback starts after the priming
                out_.u32(1);
                out_.u32(0);
                out_.u32(primingFrames);
                out_.u32(fixedPointOne);
            });
        });
        out_.box("mdia", [&] { media(number, track); });
    }

    void handler(std::string_view kind, std::string_view type, std::string_view name) {
        out_.fullBox("hdlr", 0, [&] {
            out_.text(kind);
            out_.text(type);
            out_.zeros(12);
            out_.u8(name.size());
            out_.text(name);
        });
    }

    void media(std::uint32_t number, const AacTrack& track) {
        out_.fullBox("mdhd", 0, [this] {
            times();
            out_.u32(framesPerSecond);
            out_.u32(0);
            out_.u16(0x7fff); // undetermined language
            out_.u16(0);
        });
        handler("mhlr", "soun", "SoundHandler");
        out_.box("minf", [&] {
            out_.fullBox("smhd", 0, [this] { out_.zeros(4); });
            handler("dhlr", "url ", "DataHandler");
            out_.box("dinf", [this] {
                out_.fullBox("dref", 0, [this] {
                    out_.u32(1);
                    out_.fullBox("url ", 1, [] {}); // the content is in this file
                });
            });
            out_.box("stbl", [&] { sampleTables(number, track); });
        });
    }

    void sampleTables(std::uint32_t number, const AacTrack& track) {
        out_.fullBox("stsd", 0, [&] {
            out_.u32(1);
            out_.box("mp4a", [&] { soundDescription(number, track); });
        });
        // All packets are in fragments.
        out_.fullBox("stts", 0, [this] { out_.zeros(4); });
        out_.fullBox("stsc", 0, [this] { out_.zeros(4); });
        out_.fullBox("stsz", 0, [this] { out_.zeros(8); });
        out_.fullBox("stco", 0, [this] { out_.zeros(4); });
    }

    void soundDescription(std::uint32_t number, const AacTrack& track) {
        const auto channels = static_cast<std::uint64_t>(track.channels);
        out_.zeros(6);
        out_.u16(1);
        out_.u16(1); // version, for packets of variable size
        out_.zeros(6);
        out_.u16(channels);
        out_.u16(16);     // bits per sample, by convention
        out_.u16(0xfffe); // variable bit rate
        out_.u16(0);
        out_.u32(std::uint64_t{framesPerSecond} << 16U);
        out_.u32(packetFrames);
        out_.zeros(8);
        out_.u32(2); // bytes per sample, by convention
        out_.box("wave", [&] {
            out_.box("frma", [this] { out_.text("mp4a"); });
            out_.box("mp4a", [this] { out_.zeros(4); });
            writeElementaryStream(out_, track, number, 0);
            out_.box(std::string_view("\0\0\0\0", 4), [] {});
        });
        out_.fullBox("chan", 0, [&] {
            constexpr std::uint64_t mono = 100U << 16U;
            constexpr std::uint64_t stereo = 101U << 16U;
            out_.u32((channels == 1 ? mono : stereo) | channels);
            out_.zeros(8);
        });
    }

    const RecordingTags& tags_;
    BoxWriter out_;
};

/// `contentOffset`: the track's first packet, from the fragment's beginning.
void writeTrack(BoxWriter& out, const FragmentTrack& track, std::uint64_t contentOffset) {
    const AacPacket& first = track.packets.front();
    const bool lengthsDiffer = std::ranges::any_of(
        track.packets, [&](const AacPacket& packet) { return packet.frames != first.frames; });
    const bool sizesDiffer = std::ranges::any_of(track.packets, [&](const AacPacket& packet) {
        return packet.bytes.size() != first.bytes.size();
    });
    constexpr std::uint32_t usualFieldsFollow =
        0x020038; // and offsets are relative to the fragment
    out.fullBox("tfhd", usualFieldsFollow, [&] {
        out.u32(track.number);
        out.u32(static_cast<std::uint64_t>(first.frames));
        out.u32(first.bytes.size());
        out.u32(0x2000000); // independent of other packets
    });
    out.fullBox("tfdt", 1U << 24U, [&] {
        out.u64(
            static_cast<std::uint64_t>(first.start + primingFrames)); // counted from the priming
    });
    constexpr std::uint32_t offsetFollows = 1;
    const std::uint32_t fields =
        offsetFollows | (lengthsDiffer ? 0x100U : 0U) | (sizesDiffer ? 0x200U : 0U);
    out.fullBox("trun", fields, [&] {
        out.u32(track.packets.size());
        out.u32(contentOffset);
        for (const AacPacket& packet : track.packets) {
            if (lengthsDiffer) {
                out.u32(static_cast<std::uint64_t>(packet.frames));
            }
            if (sizesDiffer) {
                out.u32(packet.bytes.size());
            }
        }
    });
}

} // namespace

std::vector<std::byte> movieHeader(std::span<const AacTrack> tracks, const RecordingTags& tags) {
    return HeaderWriter(tags).write(tracks);
}

std::vector<std::byte> movieFragment(std::uint32_t number, std::span<const FragmentTrack> tracks,
                                     std::span<const RecordingMark> marks) {
    constexpr std::uint64_t contentHeader = 8;
    const auto description = [&](std::uint64_t size) {
        BoxWriter out;
        out.box("moof", [&] {
            out.fullBox("mfhd", 0, [&] { out.u32(number); });
            writeMarks(out, marks);
            std::uint64_t content = size + contentHeader;
            for (const FragmentTrack& track : tracks) {
                out.box("traf", [&] { writeTrack(out, track, content); });
                for (const AacPacket& packet : track.packets) {
                    content += packet.bytes.size();
                }
            }
        });
        return out.take();
    };
    BoxWriter out;
    // The description holds the content's offset, which depends on the description's size.
    out.bytes(description(description(0).size()));
    out.box("mdat", [&] {
        for (const FragmentTrack& track : tracks) {
            for (const AacPacket& packet : track.packets) {
                out.bytes(std::as_bytes(std::span(packet.bytes)));
            }
        }
    });
    if (out.size() > std::numeric_limits<std::uint32_t>::max() / 2) {
        throw std::runtime_error("A fragment is too large for its size field.");
    }
    return out.take();
}

std::vector<std::byte> fragmentIndex(std::span<const std::vector<FragmentEntry>> tracks) {
    BoxWriter out;
    out.box("mfra", [&] {
        for (std::uint32_t number = 1; const auto& entries : tracks) {
            if (!entries.empty()) {
                out.fullBox("tfra", 1U << 24U, [&] {
                    out.u32(number);
                    out.u32(0); // one byte each for the track fragment, run and packet numbers
                    out.u32(entries.size());
                    for (const FragmentEntry& entry : entries) {
                        out.u64(static_cast<std::uint64_t>(entry.time));
                        out.u64(entry.offset);
                        out.u8(1);
                        out.u8(1);
                        out.u8(1);
                    }
                });
            }
            ++number;
        }
        constexpr std::uint64_t lastFieldSize = 4;
        out.fullBox("mfro", 0, [&] { out.u32(out.size() + lastFieldSize); });
    });
    return out.take();
}

} // namespace vantoro::media
