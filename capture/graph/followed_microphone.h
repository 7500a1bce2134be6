// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "capture/graph/graph.h"
#include "capture/graph/microphones.h"

namespace vantoro::capture {

/// The microphone that is recorded, which may go for a moment: when the session manager is started
/// again, all devices go and come back as new objects of the same names. One of the same name is
/// the same microphone; another one never is.
class FollowedMicrophone {
public:
    /// For how long it may be away.
    static constexpr std::uint64_t patience = 4'000'000'000; // ns

    enum class Presence : std::uint8_t { here, away, gone };

    FollowedMicrophone(std::string name, Microphone source);

    /// At each change of the graph, and about twice a second. `monotonic`: now, in nanoseconds.
    Presence update(const Graph& graph, std::uint64_t monotonic);

    /// The one that is to be heard.
    const Microphone& source() const noexcept { return source_; }

private:
    std::string name_;
    Microphone source_;
    std::optional<std::uint64_t> awaySince_;
};

} // namespace vantoro::capture
