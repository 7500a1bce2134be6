// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <span>

namespace vantoro::capture {

/// Borrowed planar sound, with the same number of frames in each channel.
using Planes = std::span<const std::span<const float>>;

/// A writable destination of the same form.
using WritablePlanes = std::span<const std::span<float>>;

} // namespace vantoro::capture
