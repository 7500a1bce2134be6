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

/// Where the sound of one node, of any kind, comes from, and on which outputs it is heard.
struct SoundPath {
    ObjectId node = 0;
    std::set<ObjectId> heardOn; ///< never empty; at most one for a playback stream
    /// The outputs whose sound it listens to, through a monitor or as the other side of a filter,
    /// except those it is heard on.
    std::set<ObjectId> passesOn;
    /// Whether some of its sound has not already been played to one of `passesOn`.
    bool bringsNewSound = false;
};

/// The paths of all nodes that are heard.
std::vector<SoundPath> soundPaths(const Graph& graph);

/// The outputs that a node of any kind is linked to.
std::set<ObjectId> outputsLinkedTo(ObjectId node, const Graph& graph);

/// The output a playback stream is heard on, or will be once it is connected, if any.
std::optional<ObjectId> outputOf(ObjectId stream, const Graph& graph);

/// The outputs heard only in other nodes' mixes, which are recorded where they are heard: recording
/// these outputs too would double their sound. Never outputs of devices, which are heard directly.
std::set<ObjectId> outputsHeardInMixes(const std::vector<SoundPath>& paths, const Graph& graph);

} // namespace vantoro::capture
