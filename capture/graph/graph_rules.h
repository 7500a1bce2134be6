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
    std::optional<Microphone> microphone; ///< what the stream is to hear
};

struct PortLink {
    Identity output;
    Identity input;

    friend auto operator<=>(const PortLink&, const PortLink&) = default;
};

/// Whether the stream's sound is made by our own process, or by what it started.
bool isOwnSound(const Node& stream, const Graph& graph, const Self& self);

/// The links that should exist for the nodes that we have, and no others.
std::set<PortLink> wantedLinks(const Graph& graph, const Self& self, const OwnNodes& own,
                               bool excludesOwnSound);

/// Whether the server lets us use it, and link to what is played.
bool mayCapture(const Graph& graph);

/// Whether coded sound goes to an output as it is, which cannot be recorded: a receiver behind it
/// makes sound of that.
bool playsCodedSound(const Graph& graph);

/// The outputs that need a tap.
std::set<Identity> outputs(const Graph& graph);

} // namespace vantoro::capture
