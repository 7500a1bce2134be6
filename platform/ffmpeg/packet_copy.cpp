// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/packet_copy.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/box_reader.h"
#include "platform/ffmpeg/fragment_checksum.h"
#include "platform/ffmpeg/packet_reader.h"
#include "platform/ffmpeg/parallel_coding.h"

namespace vantoro::ffmpeg {

bool isIntact(const Movie& movie, const std::stop_token& stop) {
    constexpr std::uint64_t blockSize = 512U << 10U;
    std::vector<std::byte> block(blockSize);
    return std::ranges::all_of(movie.scan.fragments, [&](std::uint64_t begin) {
        throwIfStopped(stop);
        const Fragment fragment = readFragment(*movie.file, begin, movie.scan.tracks);
        Checksum sum;
        for (std::uint64_t offset = begin; offset < fragment.contentEnd;) {
            const auto part =
                std::span(block).first(std::min(blockSize, fragment.contentEnd - offset));
            readExactly(*movie.file, offset, part);
            sum.add(part);
            offset += part.size();
        }
        return fragment.checksum == sum.value();
    });
}

void copyPackets(const MovieTrack& track, std::int64_t frames, M4aFile& file,
                 const ExportProgress& progress, const std::stop_token& stop) {
    constexpr std::int64_t progressInterval = 1000;
    const std::int64_t count = 1 + ((frames + packetFrames - 1) / packetFrames);
    PacketReader packets(track.movie(), track.index());
    packets.seek(0);
    for (std::int64_t done = 0; done < count; ++done) {
        const auto packet = packets.next();
        if (!packet) {
            throw DamagedMovie("it has become shorter");
        }
        file.add(*packet);
        if (done % progressInterval != 0) {
            continue;
        }
        throwIfStopped(stop);
        if (progress) {
            progress(static_cast<double>(done) / static_cast<double>(count));
        }
    }
}

} // namespace vantoro::ffmpeg
