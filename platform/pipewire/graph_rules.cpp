// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/graph_rules.h"

#include <algorithm>
#include <string_view>

#include "platform/pipewire/channel_fold.h"

namespace vantoro::pipewire {

namespace {

constexpr std::string_view captureStreamClass = "Stream/Input/Audio";

bool isCalled(const Node& node, std::string_view nameOrSerial) {
    return node.name == nameOrSerial || std::to_string(node.serial) == nameOrSerial;
}

std::optional<ObjectId> findOutput(const Graph& graph, std::string_view nameOrSerial) {
    for (const auto& [id, node] : graph.nodes) {
        if (isOutput(node) && isCalled(node, nameOrSerial)) {
            return id;
        }
    }
    return std::nullopt;
}

bool namesSomething(const std::string& target) {
    return !target.empty() && target != "-1";
}

bool exists(const Graph& graph, std::string_view nameOrSerial) {
    return std::ranges::any_of(
        graph.nodes, [&](const auto& entry) { return isCalled(entry.second, nameOrSerial); });
}

/// Where the session manager is going to connect a stream: where the user moved it, else where it
/// asks to go, else the default output; the last one also where nothing is there of that name.
std::optional<ObjectId> predictedOutput(ObjectId stream, const Graph& graph) {
    const Node& node = graph.nodes.at(stream);
    if (!node.autoconnect) {
        return std::nullopt;
    }
    const auto moved = graph.targets.find(stream);
    const std::string target = moved != graph.targets.end() && namesSomething(moved->second)
                                   ? moved->second
                                   : node.targetObject;
    if (namesSomething(target) && exists(graph, target)) {
        return findOutput(graph, target);
    }
    return graph.defaultOutput.empty() ? std::nullopt : findOutput(graph, graph.defaultOutput);
}

std::vector<Identity> portsOf(const Graph& graph, ObjectId node, PortDirection direction) {
    std::vector<Identity> result;
    for (const auto& [id, port] : graph.ports) {
        if (port.node == node && port.direction == direction) {
            result.push_back({id, port.serial});
        }
    }
    return result;
}

std::map<std::string_view, Identity> inputsByChannel(const Graph& graph, ObjectId node) {
    std::map<std::string_view, Identity> result;
    for (const Identity& port : portsOf(graph, node, PortDirection::input)) {
        result.emplace(graph.ports.at(port.id).channel, port);
    }
    return result;
}

void addStreamLinks(std::set<PortLink>& links, const Graph& graph, ObjectId stream, ObjectId tap) {
    const auto inputs = inputsByChannel(graph, tap);
    const auto ports = portsOf(graph, stream, PortDirection::output);
    std::vector<std::string> channels;
    channels.reserve(ports.size());
    for (const Identity& port : ports) {
        channels.push_back(graph.ports.at(port.id).channel);
    }
    const auto targets = tapChannelsFor(channels);
    for (std::size_t i = 0; i < ports.size(); ++i) {
        for (const std::string_view channel : targets[i]) {
            if (const auto input = inputs.find(channel); input != inputs.end()) {
                links.insert({ports[i], input->second});
            }
        }
    }
}

void addMicrophoneLinks(std::set<PortLink>& links, const Graph& graph, const OwnNodes& own) {
    if (!own.microphone || !own.microphoneStream) {
        return;
    }
    const auto inputs = portsOf(graph, *own.microphoneStream, PortDirection::input);
    if (!inputs.empty()) {
        for (const Identity& port : microphonePorts(graph, *own.microphone)) {
            links.insert({port, inputs.front()});
        }
    }
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

bool isOwnSound(const Node& stream, const Graph& graph, const Self& self) {
    if (stream.markedAsOwn || stream.processId == self.processId) {
        return true;
    }
    if (!stream.client) {
        return false;
    }
    const auto client = graph.clients.find(*stream.client);
    if (client == graph.clients.end()) {
        return stream.client == self.client;
    }
    // A stream may outlive its client, whose id somebody else has then: us, for example.
    return client->second.serial <= stream.serial &&
           (stream.client == self.client || client->second.processId == self.processId);
}

bool passesOnAnOutput(const Node& stream, const Graph& graph) {
    return !stream.linkGroup.empty() && std::ranges::any_of(graph.nodes, [&](const auto& entry) {
        return isOutput(entry.second) && entry.second.linkGroup == stream.linkGroup;
    });
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
        // Somebody else who listens in, as we do, says nothing about where the stream plays.
        playsElsewhere = playsElsewhere || target->second.mediaClass != captureStreamClass;
    }
    return playsElsewhere ? std::nullopt : predictedOutput(stream, graph);
}

std::set<PortLink> wantedLinks(const Graph& graph, const Self& self, const OwnNodes& own,
                               bool excludesOwnSound) {
    std::set<PortLink> links;
    for (const auto& [id, node] : graph.nodes) {
        if (!isPlaybackStream(node) || passesOnAnOutput(node, graph) ||
            (excludesOwnSound && isOwnSound(node, graph, self))) {
            continue;
        }
        const auto output = outputOf(id, graph);
        const auto tap = output ? own.tapOfOutput.find({*output, graph.nodes.at(*output).serial})
                                : own.tapOfOutput.end();
        if (tap != own.tapOfOutput.end()) {
            addStreamLinks(links, graph, id, tap->second);
        }
    }
    addMicrophoneLinks(links, graph, own);
    return links;
}

std::set<Identity> outputs(const Graph& graph) {
    std::set<Identity> result;
    for (const auto& [id, node] : graph.nodes) {
        if (isOutput(node)) {
            result.insert({id, node.serial});
        }
    }
    return result;
}

bool mayCapture(const Graph& graph) {
    return graph.mayExecute && graph.canMakeLinks;
}

std::vector<AudioInputDevice> microphones(const Graph& graph) {
    std::vector<AudioInputDevice> result;
    for (const auto& [id, node] : graph.nodes) {
        if (isMicrophone(node) && !node.name.empty()) {
            result.push_back({node.name, node.description.empty() ? node.name : node.description});
        }
    }
    return result;
}

std::optional<ObjectId> findMicrophone(const Graph& graph, const std::string& name) {
    for (const auto& [id, node] : graph.nodes) {
        if (isMicrophone(node) && !node.name.empty() && node.name == name) {
            return id;
        }
    }
    return std::nullopt;
}

const Node* findMicrophone(const Graph& graph, const Identity& microphone) {
    const auto found = graph.nodes.find(microphone.id);
    const bool isThere = found != graph.nodes.end() && found->second.serial == microphone.serial &&
                         isMicrophone(found->second);
    return isThere ? &found->second : nullptr;
}

std::vector<Identity> microphonePorts(const Graph& graph, const Identity& microphone) {
    const Node* const node = findMicrophone(graph, microphone);
    if (node == nullptr) {
        return {};
    }
    auto ports = portsOf(graph, microphone.id, PortDirection::output);
    const auto isMonitor = [&](const Identity& port) { return graph.ports.at(port.id).isMonitor; };
    // A microphone that programs speak into has nothing but monitors to give that sound out.
    if (node->mediaClass == "Audio/Source" || !std::ranges::all_of(ports, isMonitor)) {
        std::erase_if(ports, isMonitor);
    }
    return ports;
}

} // namespace vantoro::pipewire
