// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vantoro {

/// A version, as numbers to compare by. Any thread.
class SemanticVersion {
public:
    /// Each piece between dots is a number, empty pieces aside: the one that it spells in decimal,
    /// with or without a sign; 0 when it spells anything else, or what 64 bits do not hold.
    explicit SemanticVersion(std::string_view text);

    const std::vector<std::int64_t>& components() const { return components_; }

    /// By the first numbers that differ; where one version has none left it counts as 0, so that
    /// "1.2" equals "1.2.0".
    friend std::weak_ordering operator<=>(const SemanticVersion& a, const SemanticVersion& b);

    friend bool operator==(const SemanticVersion& a, const SemanticVersion& b) {
        return std::is_eq(a <=> b);
    }

private:
    std::vector<std::int64_t> components_;
};

} // namespace vantoro
