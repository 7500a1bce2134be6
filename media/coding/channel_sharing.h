// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::media {

/// Decides for each packet whether one coder's packets can serve both channels: when the channels
/// have been equal for so long that their coders would be in the same state.
class ChannelSharing {
public:
    /// About a second: earlier differences are inaudible.
    static constexpr int packetsUntilShared = 48;

    /// Whether to share the next packet. `alike`: whether its channels are equal.
    bool next(bool alike) noexcept {
        const bool shared = alike && alikePackets_ >= packetsUntilShared;
        alikePackets_ = alike ? (shared ? alikePackets_ : alikePackets_ + 1) : 0;
        return shared;
    }

private:
    int alikePackets_ = packetsUntilShared; // before the first packet both are silent
};

} // namespace vantoro::media
