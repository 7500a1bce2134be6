// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <vector>

namespace vantoro::media {

/// An AAC track's parameters, for its file and its decoder.
struct AacTrack {
    int channels = 2;
    int bitRate = 0;                           ///< bits per second
    std::vector<std::byte> coderConfiguration; ///< decoder-specific

    bool operator==(const AacTrack&) const = default;
};

} // namespace vantoro::media
