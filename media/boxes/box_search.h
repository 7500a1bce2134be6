// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/ports/file_system.h"

namespace vantoro::media {

/// Searches damaged bytes for boxes of a type by the characters of its name. With ascending offsets
/// it reads each byte of the file about once.
class BoxSearch {
public:
    /// Borrows the file. `type`: four characters.
    BoxSearch(const InputFile& file, std::string type) : file_(file), name_(std::move(type)) {}

    /// The first offset from `offset` on where such a box may begin, with its header before `end`.
    /// Throws what the file throws.
    std::optional<std::uint64_t> next(std::uint64_t offset, std::uint64_t end);

private:
    const InputFile& file_;
    std::string name_;
    std::vector<std::byte> window_; // a part of the file
    std::uint64_t windowOffset_ = 0;
};

} // namespace vantoro::media
