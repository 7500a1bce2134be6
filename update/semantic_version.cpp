// SPDX-License-Identifier: GPL-3.0-or-later

#include "update/semantic_version.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <ranges>
#include <system_error>

namespace vantoro {

namespace {

std::int64_t numberSpelledBy(std::string_view piece) {
    if (piece.starts_with('+') && !piece.starts_with("+-")) {
        piece.remove_prefix(1); // from_chars does not accept a plus sign
    }
    std::int64_t number = 0;
    const auto* const end = std::to_address(piece.end());
    const auto [stop, error] = std::from_chars(std::to_address(piece.begin()), end, number);
    return error == std::errc() && stop == end ? number : 0;
}

} // namespace

SemanticVersion::SemanticVersion(std::string_view text) {
    for (const auto piece : std::views::split(text, '.')) {
        if (!piece.empty()) {
            components_.push_back(numberSpelledBy({piece.begin(), piece.end()}));
        }
    }
}

std::weak_ordering operator<=>(SemanticVersion a, SemanticVersion b) {
    const auto count = std::max(a.components_.size(), b.components_.size());
    a.components_.resize(count);
    b.components_.resize(count);
    return a.components_ <=> b.components_;
}

} // namespace vantoro
