// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro::posix {

// Reading shared memory beyond its end ends the program (SIGBUS). While the session manager
// restarts, the sound server's library may take the wrong memory, too short, for the sound of a
// link. That must not end a recording.

/// From now on, a page missing from shared memory reads as zeros on threads that expect it. Any
/// thread; calls after the first have no effect.
void replaceLostMemory() noexcept;

/// The calling thread expects missing pages. Real-time safe.
void expectLostMemoryHere() noexcept;

/// How many pages this process found missing so far; each reads as zeros until it is unmapped. Any
/// thread.
std::uint64_t lostPages() noexcept;

} // namespace vantoro::posix
