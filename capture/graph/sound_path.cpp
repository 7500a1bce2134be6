// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/sound_path.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <string>
#include <utility>

namespace vantoro::capture {

namespace {

/// The nodes of this name or serial.
auto nodesCalled(const std::string& nameOrSerial, const Graph& graph) {
    return graph.nodes | std::views::filter([&](const auto& entry) {
               return entry.second.name == nameOrSerial ||
                      std::to_string(entry.second.serial) == nameOrSerial;
           });
}

bool namesSomething(const std::string& target) {
    return !target.empty() && target != "-1";
}

/// Where the session manager will connect a stream: where the user moved it, else to its requested
/// target, else, or if there is no such target, to the default output.
std::optional<ObjectId> predictedOutput(ObjectId stream, const Graph& graph) {
    const Node& node = graph.nodes.at(stream);
    if (!node.autoconnect) {
        return std::nullopt;
    }
    const auto moved = graph.targets.find(stream);
    std::string target = moved != graph.targets.end() && namesSomething(moved->second)
                             ? moved->second
                             : node.targetObject;
    if (!namesSomething(target) || nodesCalled(target, graph).empty()) {
        target = graph.defaultOutput;
    }
    for (const auto& [id, other] : nodesCalled(target, graph)) {
        if (isOutput(other) && !target.empty()) {
            return id;
        }
    }
    return std::nullopt;
}

std::set<ObjectId> outputsHearing(ObjectId id, const Node& node, const Graph& graph) {
    if (!isPlaybackStream(node)) {
        return outputsLinkedTo(id, graph);
    }
    const auto output = outputOf(id, graph);
    return output ? std::set{*output} : std::set<ObjectId>();
}

std::set<ObjectId> nodesLinkedInto(ObjectId node, const Graph& graph) {
    std::set<ObjectId> result;
    for (const auto& [id, link] : graph.links) {
        if (link.inputNode == node && graph.nodes.contains(link.outputNode)) {
            result.insert(link.outputNode);
        }
    }
    return result;
}

/// The nodes that take in what this one outputs, as filters do it: all are in one link group.
/// For a stream, the other side is the group's output, if any.
std::set<ObjectId> otherSidesOf(const Node& node, const Graph& graph) {
    if (node.linkGroup.empty() || (!isPlaybackStream(node) && !isMicrophone(node))) {
        return {};
    }
    std::set<ObjectId> groupOutputs;
    std::set<ObjectId> groupListeners;
    for (const auto& [id, other] : graph.nodes) {
        if (other.linkGroup == node.linkGroup && isOutput(other)) {
            groupOutputs.insert(id);
        } else if (other.linkGroup == node.linkGroup && isCaptureStream(other)) {
            groupListeners.insert(id);
        }
    }
    return isPlaybackStream(node) && !groupOutputs.empty() ? groupOutputs : groupListeners;
}

struct Origin {
    std::set<ObjectId> outputs;
    bool isSource = false; // some sound starts at a node without inputs
};

Origin originOf(ObjectId start, const Graph& graph) {
    Origin origin;
    std::set<ObjectId> seen{start};
    std::vector<ObjectId> ahead{start};
    while (!ahead.empty()) {
        const ObjectId id = ahead.back();
        ahead.pop_back();
        const Node& node = graph.nodes.at(id);
        if (isOutput(node)) {
            origin.outputs.insert(id);
            continue;
        }
        std::set<ObjectId> before = nodesLinkedInto(id, graph);
        before.merge(otherSidesOf(node, graph));
        // An unconnected capture stream has nothing to pass on.
        origin.isSource = origin.isSource || (before.empty() && !isCaptureStream(node));
        std::ranges::copy_if(before, std::back_inserter(ahead),
                             [&](ObjectId other) { return seen.insert(other).second; });
    }
    return origin;
}

SoundPath pathOf(ObjectId node, std::set<ObjectId> heardOn, const Graph& graph) {
    Origin origin = originOf(node, graph);
    const bool listensToOutputs = !origin.outputs.empty();
    for (const ObjectId output : heardOn) {
        origin.outputs.erase(output);
    }
    return {.node = node,
            .heardOn = std::move(heardOn),
            .passesOn = origin.outputs,
            .bringsNewSound = origin.isSource || (listensToOutputs && origin.outputs.empty())};
}

} // namespace

bool isOutput(const Node& node) {
    return node.mediaClass == "Audio/Sink";
}

bool isMicrophone(const Node& node) {
    return node.mediaClass == "Audio/Source" || node.mediaClass == "Audio/Source/Virtual" ||
           node.mediaClass == "Audio/Duplex";
}

bool isPlaybackStream(const Node& node) {
    return node.mediaClass == "Stream/Output/Audio";
}

bool isCaptureStream(const Node& node) {
    return node.mediaClass == "Stream/Input/Audio";
}

std::set<ObjectId> outputsLinkedTo(ObjectId node, const Graph& graph) {
    std::set<ObjectId> result;
    for (const auto& [id, link] : graph.links) {
        const auto target = graph.nodes.find(link.inputNode);
        if (link.outputNode == node && target != graph.nodes.end() && isOutput(target->second)) {
            result.insert(link.inputNode);
        }
    }
    return result;
}

std::optional<ObjectId> outputOf(ObjectId stream, const Graph& graph) {
    bool playsElsewhere = false;
    for (const auto& [id, link] : graph.links) {
        const auto target = graph.nodes.find(link.inputNode);
        if (link.outputNode != stream || target == graph.nodes.end()) {
            continue;
        }
        if (isOutput(target->second)) {
            return link.inputNode;
        }
        // Another program's capture stream, like ours, does not show where the stream plays.
        playsElsewhere = playsElsewhere || !isCaptureStream(target->second);
    }
    return playsElsewhere ? std::nullopt : predictedOutput(stream, graph);
}

std::vector<SoundPath> soundPaths(const Graph& graph) {
    std::vector<SoundPath> result;
    for (const auto& [id, node] : graph.nodes) {
        auto heardOn = outputsHearing(id, node, graph);
        if (!heardOn.empty()) {
            result.push_back(pathOf(id, std::move(heardOn), graph));
        }
    }
    return result;
}

std::set<ObjectId> outputsHeardInMixes(const std::vector<SoundPath>& paths, const Graph& graph) {
    std::set<ObjectId> inMixes;
    std::set<ObjectId> neededByThemselves;
    for (const SoundPath& path : paths) {
        (path.bringsNewSound ? inMixes : neededByThemselves)
            .insert(path.passesOn.begin(), path.passesOn.end());
    }
    std::erase_if(inMixes, [&](ObjectId output) {
        return graph.nodes.at(output).isOfDevice || neededByThemselves.contains(output);
    });
    // The mix must be recorded where it is heard: two outputs in each other's mixes both stay.
    std::set<ObjectId> result;
    for (const SoundPath& path : paths) {
        const bool isRecorded =
            path.bringsNewSound && std::ranges::any_of(path.heardOn, [&](ObjectId output) {
                return !inMixes.contains(output);
            });
        std::ranges::copy_if(
            path.passesOn, std::inserter(result, result.end()),
            [&](ObjectId output) { return isRecorded && inMixes.contains(output); });
    }
    return result;
}

} // namespace vantoro::capture
