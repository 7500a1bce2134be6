// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/allocation.h"

#include <malloc.h>

namespace vantoro::posix {

void keepMemorySmall() noexcept {
    // Failure is harmless: the program then uses more memory.
    static_cast<void>(mallopt(M_ARENA_MAX, 1));
    // Once set, the threshold does not grow with freed blocks, which would then stay in the heap.
    constexpr int largeBlock = 128 << 10; // bytes: glibc's initial value
    static_cast<void>(mallopt(M_MMAP_THRESHOLD, largeBlock));
}

} // namespace vantoro::posix
