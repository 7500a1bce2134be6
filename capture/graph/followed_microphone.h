// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "capture/graph/graph.h"
#include "capture/graph/microphones.h"

namespace vantoro::capture {

/// Tracks the recorded microphone while it is briefly absent: when the session manager restarts,
/// all devices return as new objects with the same names. Only a device with the same name counts
/// as the same microphone.
class FollowedMicrophone {
public:
    /// How long it may be absent.
    static constexpr std::uint64_t patience = 4'000'000'000; // ns

    enum class Presence : std::uint8_t { here, away, gone };

    FollowedMicrophone(std::string name, Microphone source);

    /// Call at each change of the graph and about twice a second. `monotonic`: now, in nanoseconds.
    Presence update(const Graph& graph, std::uint64_t monotonic);

    /// The microphone to record now.
    const Microphone& source() const noexcept { return source_; }

private:
    std::string name_;
    Microphone source_;
    std::optional<std::uint64_t> awaySince_;
};

} // namespace vantoro::capture
