// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace vantoro::pipewire {

// While the session manager restarts, the server's client library may take the wrong shared memory,
// too short, for the sound of a link. Reading beyond its end would end the program (SIGBUS) in the
// middle of a recording. Instead, missing pages read as silence, and the capture opens its streams
// again.

/// From now on, a page missing from shared memory is replaced on threads that ask for it. Any
/// thread; calls after the first have no effect.
void replaceLostMemory() noexcept;

/// Asks for it on the calling thread. Real-time safe.
void expectLostMemoryHere() noexcept;

/// How many pages were replaced so far. Any thread.
std::uint64_t lostPages() noexcept;

} // namespace vantoro::pipewire
