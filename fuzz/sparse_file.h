// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "engine/ports/file_system.h"

namespace vantoro::fuzz {

/// A file that holds only its beginning in memory, followed by zeros up to a size that may exceed
/// any memory. Counts reads, so that a reader's work can be limited.
class SparseFile final : public InputFile {
public:
    /// 100 GB: about two years of both tracks.
    static constexpr std::uint64_t maxSize = 100'000'000'000;

    /// The first byte of `input` gives the number of zeros after the other bytes: none for 0,
    /// otherwise a power of two. Borrows `input`.
    explicit SparseFile(std::span<const std::uint8_t> input);

    /// How many bytes precede the zeros.
    std::uint64_t heldSize() const noexcept { return held_.size(); }

    std::uint64_t size() const override { return size_; }

    std::size_t readAt(std::uint64_t offset, std::span<std::byte> into) const override;

    /// Allows this many further reads, of this many bytes in total; one more breaks a guarantee.
    void allow(std::uint64_t reads, std::uint64_t bytes);

private:
    std::span<const std::byte> held_;
    std::uint64_t size_ = 0;
    mutable std::uint64_t readsLeft_ = 0;
    mutable std::uint64_t bytesLeft_ = 0;
};

} // namespace vantoro::fuzz
