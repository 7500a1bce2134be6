// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vantoro::fuzz {

/// What a fuzzer begins with.
struct Seed {
    std::string name;
    std::vector<std::byte> movie;
    unsigned tail = 0; ///< of zeros behind the movie, as `SparseFile` understands it
};

/// Movies of a few hundred bytes, box by box, whole ones and such as no writer makes.
std::vector<Seed> makeMoviesByHand();

} // namespace vantoro::fuzz
