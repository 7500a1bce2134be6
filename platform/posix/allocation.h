// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::posix {

/// Keeps memory use small over hours of recording: all threads share one heap for small blocks, and
/// large blocks return to the system when freed. Call before any thread starts; no effect without
/// glibc's allocator.
void keepMemorySmall() noexcept;

} // namespace vantoro::posix
