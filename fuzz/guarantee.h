// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdlib>
#include <iostream>

namespace vantoro::fuzz {

/// Aborts if the parser breaks a guarantee, so that the fuzzer reports the input.
inline void require(bool holds, const char* guarantee) {
    if (!holds) {
        std::cerr << "Broken guarantee: " << guarantee << '\n';
        std::abort();
    }
}

} // namespace vantoro::fuzz
