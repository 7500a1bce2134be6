// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
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

} // namespace vantoro::capture
