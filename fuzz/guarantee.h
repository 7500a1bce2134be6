// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdlib>
#include <iostream>

namespace vantoro::fuzz {

/// Ends the process, which makes a finding of the input, when the parser has broken a promise.
inline void require(bool holds, const char* promise) {
    if (!holds) {
        std::cerr << "Broken promise: " << promise << '\n';
        std::abort();
    }
}

} // namespace vantoro::fuzz
