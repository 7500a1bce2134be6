// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/m4a/m4a_index.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "media/boxes/box_writer.h"
#include "media/boxes/elementary_stream.h"
#include "media/boxes/tags.h"
#include "media/codec/aac.h"

namespace vantoro::media {

namespace {

class IndexWriter {
public:
    IndexWriter(const AacTrack& track, std::int64_t frames, std::size_t packetCount,
                std::span<const std::uint64_t> chunkOffsets, const RecordingTags& tags)
        : track_(track),
          packetCount_(packetCount),
          chunkOffsets_(chunkOffsets),
          tags_(tags),
          created_(boxTime(tags.start)),
          frames_(static_cast<std::uint64_t>(frames)),
          encodedFrames_(std::min<std::uint64_t>(packetCount * std::uint64_t{packetFrames},
                                                 frames_ + primingFrames)),
          long_(std::max(encodedFrames_, created_) > std::numeric_limits<std::uint32_t>::max()) {}

    std::vector<std::byte> write() {
        out_.box("moov", [this] {
            movieHeader();
            writeTags(out_, tags_);
            out_.box("trak", [this] {
                trackHeader();
                editList();
                out_.box("mdia", [this] { media(); });
            });
        });
        return out_.take();
    }

private:
    /// A time or a frame count, in this file's width.
    void frames(std::uint64_t count) { long_ ? out_.u64(count) : out_.u32(count); }

    /// Of creation and modification.
    void times() {
        frames(created_);
        frames(created_);
    }

    /// The version of boxes with times or frame counts.
    std::uint32_t version() const noexcept { return long_ ? 1U << 24U : 0; }

    void movieHeader() {
        out_.fullBox("mvhd", version(), [this] {
            times();
            out_.u32(framesPerSecond);
            frames(frames_);
            out_.u32(fixedPointOne); // speed
            out_.u16(0x100);         // volume
            out_.zeros(10);
            out_.unityMatrix();
            out_.zeros(24);
            out_.u32(2); // next track number
        });
    }

    void trackHeader() {
        constexpr std::uint32_t enabledAndUsed = 7;
        out_.fullBox("tkhd", version() | enabledAndUsed, [this] {
            times();
            out_.u32(1); // track number
            out_.u32(0);
            frames(frames_);
            out_.zeros(12);
            out_.u16(0x100); // volume
            out_.u16(0);
            out_.unityMatrix();
            out_.zeros(8);
        });
    }

    /// Makes players skip the priming and the last packet's padding.
    void editList() {
        out_.box("edts", [this] {
            out_.fullBox("elst", version(), [this] {
                out_.u32(1);
                frames(frames_);
                frames(primingFrames);
                out_.u32(fixedPointOne);
            });
        });
    }

    void media() {
        out_.fullBox("mdhd", version(), [this] {
            times();
            out_.u32(framesPerSecond);
            frames(encodedFrames_);
            out_.u16(0x55c4); // undetermined language
            out_.u16(0);
        });
        out_.fullBox("hdlr", 0, [this] {
            out_.u32(0);
            out_.text("soun");
            out_.zeros(12);
            out_.text(std::string_view("Sound\0", 6));
        });
        out_.box("minf", [this] {
            out_.fullBox("smhd", 0, [this] { out_.zeros(4); });
            out_.box("dinf", [this] {
                out_.fullBox("dref", 0, [this] {
                    out_.u32(1);
                    out_.fullBox("url ", 1, [] {}); // the content is in this file
                });
            });
            out_.box("stbl", [this] { packetTables(); });
        });
    }

    void packetTables() {
        out_.fullBox("stsd", 0, [this] {
            out_.u32(1);
            soundDescription();
        });
        durations();
        preRoll();
        chunks();
        // Last in its parents, so that the caller can append the sizes.
        out_.fullBox("stsz", 0, [this] {
            out_.u32(0);
            out_.u32(packetCount_);
            out_.leaveOut(4 * packetCount_);
        });
    }

    void soundDescription() {
        out_.box("mp4a", [this] {
            const auto channels = static_cast<std::uint64_t>(track_.channels);
            out_.zeros(6);
            out_.u16(1);
            out_.zeros(8);
            out_.u16(channels);
            out_.u16(16); // bits per sample, by convention
            out_.u32(0);
            out_.u32(std::uint64_t{framesPerSecond} << 16U);
            writeElementaryStream(out_, track_, 0, 768 * channels);
        });
    }

    void durations() {
        const std::uint64_t last =
            encodedFrames_ - ((packetCount_ - 1) * std::uint64_t{packetFrames});
        out_.fullBox("stts", 0, [&] {
            out_.u32(packetCount_ > 1 ? 2 : 1);
            if (packetCount_ > 1) {
                out_.u32(packetCount_ - 1);
                out_.u32(packetFrames);
            }
            out_.u32(1);
            out_.u32(last);
        });
    }

    /// Makes players decode one extra packet after a seek.
    void preRoll() {
        out_.fullBox("sgpd", 1U << 24U, [this] {
            out_.text("roll");
            out_.u32(2);
            out_.u32(1);
            out_.u16(0xffff);
        });
        out_.fullBox("sbgp", 0, [this] {
            out_.text("roll");
            out_.u32(1);
            out_.u32(packetCount_);
            out_.u32(1);
        });
    }

    void chunks() {
        const std::size_t inLast = packetCount_ - ((chunkOffsets_.size() - 1) * packetsPerChunk);
        const bool lastDiffers = chunkOffsets_.size() > 1 && inLast != packetsPerChunk;
        out_.fullBox("stsc", 0, [&] {
            out_.u32(lastDiffers ? 2 : 1);
            out_.u32(1);
            out_.u32(std::min(packetsPerChunk, packetCount_));
            out_.u32(1);
            if (lastDiffers) {
                out_.u32(chunkOffsets_.size());
                out_.u32(inLast);
                out_.u32(1);
            }
        });
        const bool far = chunkOffsets_.back() > std::numeric_limits<std::uint32_t>::max();
        out_.fullBox(far ? "co64" : "stco", 0, [&] {
            out_.u32(chunkOffsets_.size());
            for (const std::uint64_t offset : chunkOffsets_) {
                far ? out_.u64(offset) : out_.u32(offset);
            }
        });
    }

    const AacTrack& track_;
    const std::size_t packetCount_;
    const std::span<const std::uint64_t> chunkOffsets_;
    const RecordingTags& tags_;
    const std::uint64_t created_; // in seconds since 1904
    const std::uint64_t frames_;
    const std::uint64_t encodedFrames_; // including the priming
    const bool long_;
    BoxWriter out_;
};

} // namespace

std::vector<std::byte> m4aFileType() {
    BoxWriter out;
    out.box("ftyp", [&] {
        out.text("M4A ");
        out.u32(0x200);
        for (const std::string_view brand : {"M4A ", "isom", "iso2"}) {
            out.text(brand);
        }
    });
    return out.take();
}

std::vector<std::byte> m4aIndex(const AacTrack& track, std::int64_t frames, std::size_t packetCount,
                                std::span<const std::uint64_t> chunkOffsets,
                                const RecordingTags& tags) {
    return IndexWriter(track, frames, packetCount, chunkOffsets, tags).write();
}

} // namespace vantoro::media
