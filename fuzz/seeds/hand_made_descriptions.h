// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

#include "media/boxes/box_writer.h"

namespace vantoro::fuzz {

/// Writes boxes into another one.
using Boxes = std::function<void(media::BoxWriter&)>;

/// How a track is coded: AAC at 48000 Hz in two channels. In the form of a QuickTime version, with
/// descriptors whose lengths take so many bytes, inside so many boxes that hold only the next.
Boxes describeSound(unsigned version, unsigned lengthBytes, unsigned depth);

} // namespace vantoro::fuzz
