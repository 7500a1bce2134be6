// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::posix {

/// Keeps memory use small over hours: all threads share one heap, and large blocks return to the
/// system when freed. Call before any thread starts; no effect without glibc's allocator.
void keepMemorySmall() noexcept;

} // namespace vantoro::posix
