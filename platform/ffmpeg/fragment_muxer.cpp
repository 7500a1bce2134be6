// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/ffmpeg/fragment_muxer.h"

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/mem.h>
}

#include <algorithm>
#include <exception>
#include <span>
#include <utility>

#include "platform/ffmpeg/aac.h"
#include "platform/ffmpeg/fragment_checksum.h"

namespace vantoro::ffmpeg {

namespace {

#if LIBAVFORMAT_VERSION_MAJOR >= 61
using StreamBytes = const std::uint8_t*;
#else
using StreamBytes = std::uint8_t*;
#endif

// The muxer goes back to fill in the sizes of the boxes of a fragment's description, which it can
// as long as that lies in this buffer: some 10 KB for ten seconds of two tracks.
constexpr int streamBufferSize = 1 << 20;

int appendBytes(void* opaque, StreamBytes bytes, int size) noexcept {
    try {
        auto& target = *static_cast<std::vector<std::byte>*>(opaque);
        const auto added = std::as_bytes(std::span(bytes, static_cast<std::size_t>(size)));
        target.insert(target.end(), added.begin(), added.end());
        return size;
    } catch (const std::exception&) {
        return AVERROR(ENOMEM);
    }
}

ByteStreamHandle openStream(std::vector<std::byte>& target) {
    auto* const buffer =
        checkAllocated(static_cast<unsigned char*>(av_malloc(std::size_t{streamBufferSize})));
    AVIOContext* const stream =
        avio_alloc_context(buffer, streamBufferSize, 1, &target, nullptr, appendBytes, nullptr);
    if (stream == nullptr) {
        av_free(buffer);
    }
    return ByteStreamHandle(checkAllocated(stream));
}

OutputHandle openMuxer(AVIOContext* stream) {
    AVFormatContext* muxer = nullptr;
    check(avformat_alloc_output_context2(&muxer, nullptr, "mov", nullptr), "Preparing the movie");
    muxer->pb = stream;
    // Nothing of the machine's library version goes into a recording.
    muxer->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;
    return OutputHandle(muxer);
}

} // namespace

FragmentMuxer::FragmentMuxer() : stream_(openStream(bytes_)), muxer_(openMuxer(stream_.get())) {}

void FragmentMuxer::addTrack(const AVCodecParameters& parameters) {
    AVStream* const stream = checkAllocated(avformat_new_stream(muxer_.get(), nullptr));
    check(avcodec_parameters_copy(stream->codecpar, &parameters), "Preparing a track");
    stream->time_base = {1, framesPerSecond};
    tracks_.emplace_back();
}

void FragmentMuxer::start() {
    // The header waits for the first packets, since only they tell it about the coder's priming.
    AVDictionary* options = nullptr;
    av_dict_set(&options, "movflags", "frag_custom+delay_moov+default_base_moof", 0);
    av_dict_set_int(&options, "movie_timescale", framesPerSecond, 0);
    const int result = avformat_write_header(muxer_.get(), &options);
    const bool allUsed = av_dict_count(options) == 0;
    av_dict_free(&options);
    check(allUsed ? result : AVERROR_OPTION_NOT_FOUND, "Beginning the movie");
}

void FragmentMuxer::add(std::size_t track, AVPacket& packet) {
    PacketHandle held(checkAllocated(av_packet_alloc()));
    av_packet_move_ref(held.get(), &packet);
    held->stream_index = static_cast<int>(track);
    tracks_[track].end = held->pts + held->duration;
    tracks_[track].packets.push_back(std::move(held));
}

bool FragmentMuxer::hasPackets() const noexcept {
    return std::ranges::any_of(tracks_, [](const Track& track) { return !track.packets.empty(); });
}

std::vector<std::byte> FragmentMuxer::closeFragment(std::int64_t end) {
    for (Track& track : tracks_) {
        auto& packets = track.packets;
        auto first = packets.begin();
        for (; first != packets.end() && (*first)->pts < end; ++first) {
            check(av_write_frame(muxer_.get(), first->get()), "Writing a packet");
        }
        packets.erase(packets.begin(), first);
    }
    if (!std::exchange(headerWritten_, true)) {
        // The first flush writes nothing but the header that had been waiting.
        check(av_write_frame(muxer_.get(), nullptr), "Writing the movie's header");
    }
    flush();
    const std::size_t begin = bytes_.size();
    check(av_write_frame(muxer_.get(), nullptr), "Closing a fragment");
    flush();
    // Through the muxer's stream, so that it knows where the next fragment will lie.
    const auto checksum = checksumBox(std::span(bytes_).subspan(begin));
    const void* const first = checksum.data();
    avio_write(stream_.get(), static_cast<const unsigned char*>(first),
               static_cast<int>(checksum.size()));
    return takeBytes();
}

std::vector<std::byte> FragmentMuxer::finish() {
    check(av_write_trailer(muxer_.get()), "Finishing the movie");
    return takeBytes();
}

std::vector<std::byte> FragmentMuxer::takeBytes() {
    flush();
    return std::exchange(bytes_, {});
}

void FragmentMuxer::flush() {
    avio_flush(stream_.get());
    check(stream_->error, "Gathering a fragment");
}

} // namespace vantoro::ffmpeg
