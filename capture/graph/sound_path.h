// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <optional>
#include <set>
#include <vector>

#include "capture/graph/graph.h"

namespace vantoro::capture {

bool isOutput(const Node& node);
bool isMicrophone(const Node& node);
bool isPlaybackStream(const Node& node);
bool isCaptureStream(const Node& node);

/// How the sound of one node, whatever its kind, comes to be heard: from where, and on which
/// outputs.
struct SoundPath {
    ObjectId node = 0;
    std::set<ObjectId> heardOn; ///< of a playback stream one at most; never empty
    /// The outputs whose sound it listens to, by their monitors or as their other side, but for
    /// those that it is heard on: whoever passed an output on to itself would make it howl.
    std::set<ObjectId> passesOn;
    /// Whether what it gives, or some of it, has not been played to one of `passesOn` before.
    bool bringsNewSound = false;
};

/// Of all nodes that are heard.
std::vector<SoundPath> soundPaths(const Graph& graph);

/// The output that a playback stream is heard on; before it has been connected, the one that it
/// will be. Nothing for a stream that plays to something that nobody hears.
std::optional<ObjectId> outputOf(ObjectId stream, const Graph& graph);

/// The outputs that are heard only as a part of what other nodes mix. Recorded where the mix is
/// heard, what is played to them would be there twice if it was recorded here as well. Outputs of
/// devices are never among them: they are heard by themselves.
std::set<ObjectId> outputsHeardInMixes(const std::vector<SoundPath>& paths, const Graph& graph);

} // namespace vantoro::capture
