// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

#include "media/boxes/box_writer.h"

namespace vantoro::fuzz {

/// Writes child boxes.
using Boxes = std::function<void(media::BoxWriter&)>;

/// Describes AAC at 48000 Hz in two channels. `version`: of QuickTime's description; `lengthBytes`:
/// of each descriptor's length; `depth`: nested boxes around the descriptors.
Boxes describeSound(unsigned version, unsigned lengthBytes, unsigned depth);

} // namespace vantoro::fuzz
