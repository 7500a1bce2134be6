// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/sparse_file.h"

#include <algorithm>

#include "fuzz/guarantee.h"

namespace vantoro::fuzz {

namespace {

constexpr unsigned tailKinds = 38; // up to 2^37 zeros, more than the maximum size

} // namespace

SparseFile::SparseFile(std::span<const std::uint8_t> input) {
    if (input.empty()) {
        return;
    }
    const unsigned tail = input.front() % tailKinds;
    held_ = std::as_bytes(input.subspan(1));
    size_ = std::min(held_.size() + (tail == 0 ? 0 : std::uint64_t{1} << tail), maxSize);
}

std::size_t SparseFile::readAt(std::uint64_t offset, std::span<std::byte> into) const {
    require(readsLeft_ > 0, "the file is read a bounded number of times");
    require(into.size() <= bytesLeft_, "a bounded number of bytes is read");
    --readsLeft_;
    bytesLeft_ -= into.size();
    if (offset >= size_) {
        return 0;
    }
    const auto wanted = into.first(std::min<std::uint64_t>(into.size(), size_ - offset));
    const auto held = held_.subspan(std::min<std::uint64_t>(offset, held_.size()));
    const auto copied = held.first(std::min(held.size(), wanted.size()));
    std::ranges::copy(copied, wanted.begin());
    std::ranges::fill(wanted.subspan(copied.size()), std::byte{0});
    return wanted.size();
}

void SparseFile::allow(std::uint64_t reads, std::uint64_t bytes) {
    readsLeft_ = reads;
    bytesLeft_ = bytes;
}

} // namespace vantoro::fuzz
