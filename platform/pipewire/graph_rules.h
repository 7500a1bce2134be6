// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/recording_types.h"
#include "platform/pipewire/graph.h"

namespace vantoro::pipewire {

// What is to be done in a given state of the sound server. All of it is decided here, from the
// graph alone, and done elsewhere.

/// Who we are to the sound server.
struct Self {
    std::optional<ObjectId> client;
    std::string processId;
};

/// The capture nodes that we have, by what they capture.
struct OwnNodes {
    std::map<Identity, ObjectId> tapOfOutput; ///< by the output whose applications it hears
    std::optional<ObjectId> microphoneStream;
    std::optional<Identity> microphone; ///< the source that the stream is to hear
};

struct PortLink {
    Identity output;
    Identity input;

    friend auto operator<=>(const PortLink&, const PortLink&) = default;
};

bool isOutput(const Node& node);
bool isMicrophone(const Node& node);
bool isPlaybackStream(const Node& node);

/// Whether the stream's sound is made by our own process, or by what it started.
bool isOwnSound(const Node& stream, const Graph& graph, const Self& self);

/// Whether a stream only passes on what was played to an output before: it would be heard twice.
bool passesOnAnOutput(const Node& stream, const Graph& graph);

/// The output that a stream is heard on; before it has been connected, the one that it will be.
/// Nothing for a stream that plays to something that nobody hears.
std::optional<ObjectId> outputOf(ObjectId stream, const Graph& graph);

/// The links that should exist for the nodes that we have, and no others.
std::set<PortLink> wantedLinks(const Graph& graph, const Self& self, const OwnNodes& own,
                               bool excludesOwnSound);

/// Whether the server lets us use it, and link to what is played.
bool mayCapture(const Graph& graph);

/// The outputs that need a tap.
std::set<Identity> outputs(const Graph& graph);

/// In the order in which the server lists them.
std::vector<AudioInputDevice> microphones(const Graph& graph);
std::optional<ObjectId> findMicrophone(const Graph& graph, const std::string& name);
/// The microphone itself; null once it is gone, whatever has its id by then.
const Node* findMicrophone(const Graph& graph, const Identity& microphone);
/// Ports that the microphone's own sound comes out of; none once it is gone.
std::vector<Identity> microphonePorts(const Graph& graph, const Identity& microphone);

} // namespace vantoro::pipewire
