// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/posix/allocation.h"

#include <malloc.h>

namespace vantoro::posix {

void keepMemorySmall() noexcept {
    // An allocator that refuses does so harmlessly: then the program takes more memory.
    static_cast<void>(mallopt(M_ARENA_MAX, 1));
    // Set, it no longer grows with the blocks that were freed, which would then stay in the arena.
    constexpr int largeBlock = 128 << 10; // bytes: the value that it begins with
    static_cast<void>(mallopt(M_MMAP_THRESHOLD, largeBlock));
}

} // namespace vantoro::posix
