// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "capture/graph/graph.h"
#include "engine/recording_types.h"

namespace vantoro::capture {

/// What is recorded as the microphone: a device, or one of its inputs.
struct Microphone {
    Identity device;
    std::string channel; ///< of the input; empty: all of them

    friend bool operator==(const Microphone&, const Microphone&) = default;
};

/// In the order in which the server lists them. A device with more than two inputs is followed by
/// each of them, "NAME:CHANNEL".
std::vector<AudioInputDevice> microphones(const Graph& graph);

/// By the identifier in that list.
std::optional<Microphone> findMicrophone(const Graph& graph, const std::string& identifier);

/// The device itself; null once it is gone, whatever has its id by then.
const Node* deviceOf(const Graph& graph, const Microphone& microphone);

/// Ports that the microphone's own sound comes out of; none once it is gone.
std::vector<Identity> portsOf(const Graph& graph, const Microphone& microphone);

} // namespace vantoro::capture
