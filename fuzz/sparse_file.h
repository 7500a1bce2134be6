// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/ports/file_system.h"

namespace vantoro::fuzz {

/// A file of which only the beginning is held. Behind that lie zeros, up to a size that may be more
/// than any memory. What is read is counted, so that a reader's work can be bounded.
class SparseFile final : public InputFile {
public:
    /// 100 GB: some two years of both tracks.
    static constexpr std::uint64_t largestSize = 100'000'000'000;

    /// The first byte of `input` says how many zeros follow the others: none for 0, else a power of
    /// two. Borrows `input`.
    explicit SparseFile(std::span<const std::uint8_t> input);

    /// How many bytes are not part of the row of zeros.
    std::uint64_t heldSize() const noexcept { return held_.size(); }

    std::uint64_t size() const override { return size_; }

    std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const override;

    /// From now on so many reads, of so many bytes in all, are allowed: the next one breaks a
    /// promise.
    void allow(std::uint64_t reads, std::uint64_t bytes);

private:
    std::span<const std::byte> held_;
    std::uint64_t size_ = 0;
    mutable std::uint64_t readsLeft_ = 0;
    mutable std::uint64_t bytesLeft_ = 0;
};

} // namespace vantoro::fuzz
