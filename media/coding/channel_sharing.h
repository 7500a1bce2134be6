// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace vantoro::media {

/// Decides from packet to packet whether one coder's packets can serve two channels: those whose
/// sound was the same for so long that a coder of either would be in the same state.
class ChannelSharing {
public:
    /// About a second: what a coder takes from further back, no decoder can hear.
    static constexpr int packetsUntilShared = 48;

    /// Whether the next packet, with the same sound in both channels or not, is shared.
    bool next(bool alike) noexcept {
        const bool shared = alike && alikePackets_ >= packetsUntilShared;
        alikePackets_ = alike ? (shared ? alikePackets_ : alikePackets_ + 1) : 0;
        return shared;
    }

private:
    int alikePackets_ = packetsUntilShared; // before the first sound there was no difference
};

} // namespace vantoro::media
