// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/m4a/m4a_file.h"

#include <array>
#include <bit>
#include <limits>
#include <stdexcept>
#include <utility>

#include "media/coding/aac.h"

namespace vantoro::media {

namespace {

// Large enough that the number of writes does not matter.
constexpr std::size_t bufferSize = 1U << 20U;
constexpr std::size_t contentHeaderSize = 16;

template <class Number>
std::array<std::byte, sizeof(Number)> bigEndian(Number value) {
    if constexpr (std::endian::native == std::endian::little) {
        value = std::byteswap(value);
    }
    return std::bit_cast<std::array<std::byte, sizeof(Number)>>(value);
}

} // namespace

M4aFile::M4aFile(OutputFile& file, AacTrack track, std::int64_t expectedFrames)
    : file_(file), track_(std::move(track)) {
    buffer_.reserve(bufferSize);
    // Growing by doubling would take more memory than the table itself.
    const auto packets = (static_cast<std::size_t>(expectedFrames) / packetFrames) + 3;
    packetSizes_.reserve(packets);
    chunkOffsets_.reserve((packets / packetsPerChunk) + 1);
    put(m4aFileType());
    contentStart_ = buffer_.size();
    constexpr std::uint32_t sizeIsLarge = 1;
    put(bigEndian(sizeIsLarge));
    put(std::as_bytes(std::span("mdat", 4)));
    put(bigEndian(std::uint64_t{contentHeaderSize})); // set by `finish`
}

void M4aFile::add(std::span<const std::byte> packet) {
    using Size = decltype(packetSizes_)::value_type; // a packet has at most 1536 bytes
    if (packet.size() > std::numeric_limits<Size>::max()) {
        throw std::runtime_error("A packet exceeds the size limit of AAC.");
    }
    if (packetSizes_.size() % packetsPerChunk == 0) {
        chunkOffsets_.push_back(written_ + buffer_.size());
    }
    packetSizes_.push_back(static_cast<Size>(packet.size()));
    put(packet);
}

void M4aFile::sync() {
    flush();
    file_.sync();
}

void M4aFile::finish(std::int64_t frames) {
    const std::uint64_t contentEnd = written_ + buffer_.size();
    put(m4aIndex(track_, frames, packetSizes_.size(), chunkOffsets_));
    for (const auto size : packetSizes_) {
        put(bigEndian(std::uint32_t{size}));
    }
    flush();
    file_.writeAt(contentStart_ + 8, bigEndian(contentEnd - contentStart_));
    file_.sync();
    file_.close();
}

void M4aFile::put(std::span<const std::byte> bytes) {
    if (bytes.size() > bufferSize - buffer_.size()) {
        flush();
    }
    buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
}

void M4aFile::flush() {
    file_.writeAt(written_, buffer_);
    written_ += buffer_.size();
    buffer_.clear();
}

} // namespace vantoro::media
