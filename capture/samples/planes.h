// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <span>

namespace vantoro::capture {

/// Borrowed sound, channel by channel, with as many frames in each.
using Planes = std::span<const std::span<const float>>;

/// Where sound is to be written, in the same form.
using WritablePlanes = std::span<const std::span<float>>;

} // namespace vantoro::capture
