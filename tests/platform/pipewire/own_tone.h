// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <memory>

namespace vantoro::testing {

/// A tone that this very process plays to the default output while this lives.
class OwnTone {
public:
    explicit OwnTone(double frequency);
    OwnTone(const OwnTone&) = delete;
    OwnTone& operator=(const OwnTone&) = delete;
    ~OwnTone();

private:
    class Player;
    std::unique_ptr<Player> player_;
};

} // namespace vantoro::testing
