#pragma once

#include <cstdio>
#include <cstdlib>

namespace vantoro::fuzz {

/// Ends the process, which makes a finding of the input, when the parser has broken a promise.
inline void require(bool holds, const char* promise) {
    if (!holds) {
        std::fprintf(stderr, "Broken promise: %s\n", promise);
        std::abort();
    }
}

} // namespace vantoro::fuzz
