// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <vector>

namespace vantoro::media {

/// How a track of AAC is coded: what its file says of it, and what its decoder needs.
struct AacTrack {
    int channels = 2;
    int bitRate = 0;                           ///< bits a second
    std::vector<std::byte> coderConfiguration; ///< how the packets are to be decoded

    bool operator==(const AacTrack&) const = default;
};

} // namespace vantoro::media
