// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "capture/graph/graph.h"
#include "engine/recording_types.h"

namespace vantoro::capture {

/// A microphone to record: a device, or one of its inputs.
struct Microphone {
    Identity device;
    std::string channel; ///< the input's; empty: all inputs

    friend bool operator==(const Microphone&, const Microphone&) = default;
};

/// All microphones, in the server's order. A device with more than two inputs is followed by each
/// of them, "NAME:CHANNEL".
std::vector<AudioInputDevice> microphones(const Graph& graph);

/// Finds a microphone by its identifier in that list.
std::optional<Microphone> findMicrophone(const Graph& graph, const std::string& identifier);

/// The device's node; null once it is gone, even if its id is reused.
const Node* deviceOf(const Graph& graph, const Microphone& microphone);

/// The ports with the microphone's own sound; none once it is gone.
std::vector<Identity> portsOf(const Graph& graph, const Microphone& microphone);

/// Tracks the recorded microphone while it is briefly absent: when the session manager restarts,
/// all devices return as new objects with the same names.
class FollowedMicrophone {
public:
    /// How long it may be absent.
    static constexpr std::uint64_t patience = 4'000'000'000; // ns

    enum class Presence : std::uint8_t { here, away, gone };

    FollowedMicrophone(std::string name, Microphone source)
        : name_(std::move(name)), source_(std::move(source)) {}

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
