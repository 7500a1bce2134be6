// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::posix {

/// Has memory stay small through hours of recording: small blocks of all threads lie together, and
/// large ones go back to the system as soon as they are free. To be called before any thread
/// starts; without glibc's allocator it changes nothing.
void keepMemorySmall() noexcept;

} // namespace vantoro::posix
