// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <compare>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "capture/graph/graph.h"
#include "capture/graph/microphones.h"
#include "capture/graph/sound_path.h"

namespace vantoro::capture {

// What to do in a given state of the sound server, decided from the graph alone and carried out
// elsewhere.

/// Our identity on the sound server.
struct Self {
    std::optional<ObjectId> client;
    std::string processId;
};

/// Our capture nodes.
struct OwnNodes {
    std::map<Identity, ObjectId> tapOfOutput; ///< key: the output whose applications it records
    std::optional<ObjectId> microphoneStream;
    std::optional<Microphone> microphone; ///< the stream's source
};

struct PortLink {
    Identity output;
    Identity input;

    friend auto operator<=>(const PortLink&, const PortLink&) = default;
};

/// Whether our own process, or one that it started, makes the stream's sound.
bool isOwnSound(const Node& stream, const Graph& graph, const Self& self);

/// All links that should exist for our nodes.
std::set<PortLink> wantedLinks(const Graph& graph, const Self& self, const OwnNodes& own,
                               bool excludesOwnSound);

/// Whether the server lets us use it and create links to playback.
bool mayCapture(const Graph& graph);

/// Whether encoded sound passes to an output for a receiver to decode; it cannot be recorded.
bool playsCodedSound(const Graph& graph);

/// The outputs, each of which needs a tap.
std::set<Identity> outputs(const Graph& graph);

} // namespace vantoro::capture
