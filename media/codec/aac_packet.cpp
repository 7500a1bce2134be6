// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/codec/aac_packet.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace vantoro::media {

namespace {

// A packet is a sequence of elements: 3 bits of type, then, except for the end, 4 bits of number.
constexpr unsigned singleChannel = 0;
constexpr unsigned channelPair = 1;
constexpr unsigned end = 7;
constexpr std::size_t elementHeaderBits = 7;
constexpr unsigned gainBits = 8; // a channel's first field, in steps of 1.5 dB
// Then 1 reserved bit, 2 bits of window sequence, 1 bit of window shape.
constexpr std::size_t sequencePosition = elementHeaderBits + gainBits + 1;
constexpr unsigned startOfShort = 1; // the only long sequence with a short end
constexpr unsigned eightShort = 2;

class BitWriter {
public:
    void put(unsigned value, unsigned count) {
        pending_ = pending_ << count | value;
        pendingCount_ += count;
        while (pendingCount_ >= 8) {
            pendingCount_ -= 8;
            bytes_.push_back(static_cast<std::uint8_t>(pending_ >> pendingCount_));
        }
    }

    std::vector<std::uint8_t> take() {
        if (pendingCount_ > 0) {
            put(0, 8 - pendingCount_);
        }
        return std::move(bytes_);
    }

private:
    std::uint32_t pending_ = 0; // the lowest `pendingCount_` bits are not in `bytes_` yet
    unsigned pendingCount_ = 0;
    std::vector<std::uint8_t> bytes_;
};

class BitReader {
public:
    BitReader(std::span<const std::uint8_t> bytes, std::size_t position)
        : bytes_(bytes), position_(position) {}

    /// Up to 8 bits.
    unsigned get(unsigned count) {
        const std::size_t index = position_ / 8;
        const auto first = std::uint32_t{bytes_[index]} << 8U;
        const std::uint32_t both = first | (index + 1 < bytes_.size() ? bytes_[index + 1] : 0U);
        const auto used = static_cast<unsigned>(position_ % 8);
        position_ += count;
        return (both >> (16 - used - count)) & ((1U << count) - 1);
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t position_;
};

/// Where a packet's only channel ends: before the end element, which holds the last one bits.
std::size_t findChannelEnd(std::span<const std::uint8_t> packet) {
    std::size_t size = packet.size();
    while (size > 0 && packet[size - 1] == 0) {
        --size;
    }
    const std::size_t bits =
        size == 0 ? 0 : (8 * size) - static_cast<std::size_t>(std::countr_zero(packet[size - 1]));
    if (bits < elementHeaderBits + gainBits + 3 || BitReader(packet, 0).get(3) != singleChannel ||
        BitReader(packet, bits - 3).get(3) != end) {
        throw std::runtime_error("The AAC coder produced an unexpected packet.");
    }
    return bits - 3;
}

void copyChannel(std::span<const std::uint8_t> packet, unsigned gainSteps, BitWriter& out) {
    constexpr unsigned maxGain = 255;
    std::size_t rest = findChannelEnd(packet) - elementHeaderBits - gainBits;
    BitReader in(packet, elementHeaderBits);
    out.put(std::min(in.get(gainBits) + gainSteps, maxGain), gainBits);
    while (rest > 0) {
        const auto count = static_cast<unsigned>(std::min<std::size_t>(rest, 8));
        out.put(in.get(count), count);
        rest -= count;
    }
}

} // namespace

WindowEnd windowEndOf(std::span<const std::uint8_t> packet) {
    if (findChannelEnd(packet) < sequencePosition + 3) {
        throw std::runtime_error("The AAC coder produced an unexpected packet.");
    }
    BitReader in(packet, sequencePosition);
    const unsigned sequence = in.get(2);
    return {.isShort = sequence == startOfShort || sequence == eightShort, .shape = in.get(1)};
}

std::vector<std::uint8_t> joinChannels(std::span<const std::span<const std::uint8_t>> channels,
                                       unsigned gainSteps) {
    BitWriter out;
    out.put(channels.size() == 1 ? singleChannel : channelPair, 3);
    out.put(0, 4);
    if (channels.size() > 1) {
        out.put(0, 1); // each channel has its own window
    }
    for (const auto channel : channels) {
        copyChannel(channel, gainSteps, out);
    }
    out.put(end, 3);
    return out.take();
}

} // namespace vantoro::media
