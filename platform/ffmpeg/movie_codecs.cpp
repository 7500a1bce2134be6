#include "platform/ffmpeg/movie_codecs.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <algorithm>
#include <cstdio>
#include <exception>
#include <span>

#include "platform/ffmpeg/box_reader.h"

namespace vantoro::ffmpeg {

namespace {

// A table in a header may claim billions of entries, and the library makes room for them before it
// reads any. Counts for everything that the process lets the library do, whose largest pieces are
// buffers of 1 MiB.
constexpr std::size_t largestAllocation = 64U << 20U;

/// A file as the library reads it: as if it ended behind its header.
struct HeaderStream {
    const InputFile& file;
    const std::int64_t size;
    std::int64_t position = 0;
};

int readHeader(void* opaque, std::uint8_t* buffer, int size) noexcept {
    auto& stream = *static_cast<HeaderStream*>(opaque);
    const std::int64_t count = std::min<std::int64_t>(size, stream.size - stream.position);
    if (count <= 0) {
        return AVERROR_EOF;
    }
    try {
        readExactly(stream.file, static_cast<std::uint64_t>(stream.position),
                    std::as_writable_bytes(std::span(buffer, static_cast<std::size_t>(count))));
    } catch (const std::exception&) {
        return AVERROR(EIO);
    }
    stream.position += count;
    return static_cast<int>(count);
}

std::int64_t seekHeader(void* opaque, std::int64_t offset, int whence) noexcept {
    auto& stream = *static_cast<HeaderStream*>(opaque);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return stream.size;
    case SEEK_SET:
        break;
    case SEEK_CUR:
        offset += stream.position;
        break;
    case SEEK_END:
        offset += stream.size;
        break;
    default:
        return AVERROR(EINVAL);
    }
    if (offset < 0 || offset > stream.size) {
        return AVERROR(EINVAL);
    }
    stream.position = offset;
    return offset;
}

ByteStreamHandle openStream(HeaderStream& source) {
    constexpr int bufferSize = 8192;
    auto* const buffer =
        checkAllocated(static_cast<unsigned char*>(av_malloc(std::size_t{bufferSize})));
    AVIOContext* const stream =
        avio_alloc_context(buffer, bufferSize, 0, &source, readHeader, nullptr, seekHeader);
    if (stream == nullptr) {
        av_free(buffer);
    }
    return ByteStreamHandle(checkAllocated(stream));
}

} // namespace

std::vector<ParametersHandle> readCodecs(const InputFile& file, const MovieScan& scan) {
    av_max_alloc(largestAllocation);
    HeaderStream source{.file = file, .size = static_cast<std::int64_t>(scan.headerEnd)};
    const ByteStreamHandle stream = openStream(source);
    AVFormatContext* context = checkAllocated(avformat_alloc_context());
    context->pb = stream.get();
    // Frees the context itself where it fails.
    const int result = avformat_open_input(&context, nullptr, av_find_input_format("mov"), nullptr);
    if (result < 0) {
        throw DamagedMovie("its header cannot be understood");
    }
    const InputHandle input(context);

    std::vector<ParametersHandle> codecs(scan.tracks.size());
    for (const AVStream* const track : std::span(input->streams, input->nb_streams)) {
        const auto header =
            std::ranges::find(scan.tracks, static_cast<std::uint32_t>(track->id), &TrackHeader::id);
        if (header == scan.tracks.end() || track->codecpar->codec_id != AV_CODEC_ID_AAC) {
            continue;
        }
        ParametersHandle codec(checkAllocated(avcodec_parameters_alloc()));
        check(avcodec_parameters_copy(codec.get(), track->codecpar), "Reading a track's header");
        codecs[static_cast<std::size_t>(header - scan.tracks.begin())] = std::move(codec);
    }
    return codecs;
}

} // namespace vantoro::ffmpeg
