// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vantoro::fuzz {

/// An initial input of a fuzzer.
struct Seed {
    std::string name;
    std::vector<std::byte> movie;
    unsigned tail = 0; ///< zeros after the movie, as in `SparseFile`
};

/// Movies of a few hundred bytes, built box by box: valid ones, and ones that no writer makes.
std::vector<Seed> makeMoviesByHand();

} // namespace vantoro::fuzz
