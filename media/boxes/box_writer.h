// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace vantoro::media {

/// 1 as a 16.16 fixed-point number.
inline constexpr std::uint32_t fixedPointOne = 0x10000;

/// Writes nested boxes.
class BoxWriter {
public:
    void u8(std::uint64_t value) { bigEndian(value, 1); }

    void u16(std::uint64_t value) { bigEndian(value, 2); }

    void u32(std::uint64_t value) { bigEndian(value, 4); }

    void u64(std::uint64_t value) { bigEndian(value, 8); }

    void text(std::string_view text) { bytes(std::as_bytes(std::span(text))); }

    void bytes(std::span<const std::byte> bytes) {
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }

    void zeros(std::size_t count) { bytes_.resize(bytes_.size() + count); }

    /// The identity matrix for pictures.
    void unityMatrix() {
        for (const std::uint32_t value :
             {fixedPointOne, 0U, 0U, 0U, fixedPointOne, 0U, 0U, 0U, 0x40000000U}) {
            u32(value);
        }
    }

    template <class Content>
    void box(std::string_view type, const Content& content) {
        const std::size_t begin = bytes_.size();
        const std::uint64_t leftOutBefore = leftOut_;
        u32(0);
        text(type);
        content();
        const std::uint64_t size = bytes_.size() - begin + leftOut_ - leftOutBefore;
        for (std::size_t i = 0; i < 4; ++i) {
            bytes_[begin + i] = static_cast<std::byte>(size >> (24 - 8 * i));
        }
    }

    /// A box with a version and flags.
    template <class Content>
    void fullBox(std::string_view type, std::uint32_t versionAndFlags, const Content& content) {
        box(type, [&] {
            u32(versionAndFlags);
            content();
        });
    }

    /// Counts bytes as part of the current boxes that the caller writes after all others.
    void leaveOut(std::uint64_t count) { leftOut_ += count; }

    std::size_t size() const noexcept { return bytes_.size(); }

    std::vector<std::byte> take() { return std::exchange(bytes_, {}); }

private:
    void bigEndian(std::uint64_t value, unsigned size) {
        for (unsigned i = size; i-- > 0;) {
            bytes_.push_back(static_cast<std::byte>(value >> (8 * i)));
        }
    }

    std::vector<std::byte> bytes_;
    std::uint64_t leftOut_ = 0;
};

} // namespace vantoro::media
