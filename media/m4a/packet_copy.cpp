// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/m4a/packet_copy.h"

#include "media/boxes/box_reader.h"
#include "media/coding/aac.h"
#include "media/movie/packet_reader.h"
#include "media/movie/stopping.h"

namespace vantoro::media {

void copyPackets(const std::shared_ptr<const Movie>& movie, std::size_t track, std::int64_t frames,
                 M4aFile& file, const ExportProgress& progress, const std::stop_token& stop) {
    constexpr std::int64_t progressInterval = 1000;
    const std::int64_t count = 1 + ((frames + packetFrames - 1) / packetFrames);
    PacketReader packets(movie, track);
    packets.seek(0);
    for (std::int64_t done = 0; done < count; ++done) {
        const auto packet = packets.next();
        if (!packet || packet->empty()) {
            throw DamagedMovie("the file is shorter than before");
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

} // namespace vantoro::media
