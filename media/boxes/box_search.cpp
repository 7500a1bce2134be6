// SPDX-License-Identifier: GPL-3.0-or-later

#include "media/boxes/box_search.h"

#include <algorithm>
#include <string_view>

namespace vantoro::media {

namespace {

constexpr std::uint64_t windowSize = 256U << 10U;
constexpr std::uint64_t sizeField = 4; // precedes the name
constexpr std::uint64_t headerSize = 8;

} // namespace

std::optional<std::uint64_t> BoxSearch::next(std::uint64_t offset, std::uint64_t end) {
    while (offset + headerSize <= end) {
        std::uint64_t windowEnd = windowOffset_ + window_.size();
        if (offset < windowOffset_ || offset + headerSize > windowEnd) {
            window_.resize(std::min(windowSize, end - offset));
            window_.resize(file_.readAt(offset, window_));
            windowOffset_ = offset;
            windowEnd = windowOffset_ + window_.size();
            if (window_.size() < headerSize) {
                return std::nullopt;
            }
        }
        const void* const bytes = window_.data();
        const std::string_view text(static_cast<const char*>(bytes), window_.size());
        const auto found = text.find(name_, offset - windowOffset_ + sizeField);
        if (found != std::string_view::npos) {
            const std::uint64_t position = windowOffset_ + found - sizeField;
            return position + headerSize <= end ? std::optional(position) : std::nullopt;
        }
        offset = windowEnd - headerSize + 1;
    }
    return std::nullopt;
}

} // namespace vantoro::media
