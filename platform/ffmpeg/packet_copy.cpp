// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/packet_copy.h"

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/box_reader.h"
#include "platform/ffmpeg/packet_reader.h"
#include "platform/ffmpeg/stopping.h"

namespace vantoro::ffmpeg {

void copyPackets(const MovieTrack& track, std::int64_t frames, M4aFile& file,
                 const ExportProgress& progress, const std::stop_token& stop) {
    constexpr std::int64_t progressInterval = 1000;
    const std::int64_t count = 1 + ((frames + packetFrames - 1) / packetFrames);
    PacketReader packets(track.movie(), track.index());
    packets.seek(0);
    for (std::int64_t done = 0; done < count; ++done) {
        const auto packet = packets.next();
        if (!packet || packet->empty()) {
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
