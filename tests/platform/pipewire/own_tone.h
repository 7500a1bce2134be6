// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <memory>

namespace vantoro::testing {

/// A tone that this process plays to the default output while this object lives.
class OwnTone {
public:
    explicit OwnTone(double frequency);
    /// Replaces the tone by another at once, as a player does between titles.
    void replace(double frequency);
    /// The id of the stream's node, once it plays.
    std::uint32_t node() const;
    OwnTone(const OwnTone&) = delete;
    OwnTone& operator=(const OwnTone&) = delete;
    ~OwnTone();

private:
    class Player;
    std::unique_ptr<Player> player_;
};

} // namespace vantoro::testing
