// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vantoro {

/// A version as comparable numbers. Any thread.
class SemanticVersion {
public:
    /// Splits at dots and skips empty pieces. A piece is a decimal number with an optional sign;
    /// any other, or one beyond 64 bits, counts as 0.
    explicit SemanticVersion(std::string_view text);

    const std::vector<std::int64_t>& components() const { return components_; }

    /// Compares number by number; missing ones count as 0, so "1.2" equals "1.2.0".
    friend std::weak_ordering operator<=>(SemanticVersion a, SemanticVersion b);

    friend bool operator==(const SemanticVersion& a, const SemanticVersion& b) {
        return std::is_eq(a <=> b);
    }

private:
    std::vector<std::int64_t> components_;
};

} // namespace vantoro
