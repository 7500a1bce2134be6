// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/graph_rules.h"

#include <algorithm>
#include <ranges>
#include <string_view>

#include "capture/graph/channel_fold.h"

namespace vantoro::capture {

namespace {

std::map<std::string_view, Identity> inputsByChannel(const Graph& graph, ObjectId node) {
    std::map<std::string_view, Identity> result;
    for (const Identity& port : portsOf(graph, node, PortDirection::input)) {
        result.emplace(graph.ports.at(port.id).channel, port);
    }
    return result;
}

/// A port to record, and the channel it plays on.
struct HeardPort {
    Identity port;
    std::string channel;
};

/// A stream is recorded as a whole; the server decides how its channels reach the output's.
std::vector<HeardPort> portsOfStream(const Graph& graph, ObjectId stream) {
    const auto ports = portsOf(graph, stream, PortDirection::output);
    std::vector<std::string> channels;
    for (const Identity& port : ports) {
        channels.push_back(graph.ports.at(port.id).channel);
    }
    const auto areMade = areMadeFromOthers(channels, graph.nodes.at(stream).channels);
    std::vector<HeardPort> result;
    for (std::size_t i = 0; i < ports.size(); ++i) {
        if (!areMade[i]) {
            result.push_back({ports[i], channels[i]});
        }
    }
    return result;
}

/// For other nodes, each port is heard where it is linked.
std::vector<HeardPort> portsLinkedTo(const Graph& graph, ObjectId node, ObjectId output) {
    std::map<std::pair<ObjectId, ObjectId>, HeardPort> result; // in order of the output's ports
    for (const auto& [id, link] : graph.links) {
        const auto from = graph.ports.find(link.outputPort);
        const auto to = graph.ports.find(link.inputPort);
        if (link.outputNode == node && link.inputNode == output && from != graph.ports.end() &&
            to != graph.ports.end()) {
            const std::string& channel =
                hasPosition(to->second.channel) ? to->second.channel : from->second.channel;
            result.try_emplace({link.inputPort, link.outputPort},
                               HeardPort{{from->first, from->second.serial}, channel});
        }
    }
    const auto ports = std::views::values(result);
    return {ports.begin(), ports.end()};
}

void addTapLinks(std::set<PortLink>& links, const Graph& graph, const std::vector<HeardPort>& ports,
                 ObjectId tap) {
    const auto inputs = inputsByChannel(graph, tap);
    const auto channels = ports | std::views::transform(&HeardPort::channel);
    const auto targets = tapChannelsFor({channels.begin(), channels.end()});
    for (std::size_t i = 0; i < ports.size(); ++i) {
        for (const std::string_view channel : targets[i]) {
            if (const auto input = inputs.find(channel); input != inputs.end()) {
                links.insert({ports[i].port, input->second});
            }
        }
    }
}

/// A port heard on two outputs is recorded on the first.
void addPathLinks(std::set<PortLink>& links, const Graph& graph, const OwnNodes& own,
                  const SoundPath& path) {
    std::set<Identity> recorded;
    for (const ObjectId output : path.heardOn) {
        const auto tap = own.tapOfOutput.find({output, graph.nodes.at(output).serial});
        if (tap == own.tapOfOutput.end()) {
            continue;
        }
        auto ports = isPlaybackStream(graph.nodes.at(path.node))
                         ? portsOfStream(graph, path.node)
                         : portsLinkedTo(graph, path.node, output);
        std::erase_if(ports, [&](const HeardPort& heard) { return recorded.contains(heard.port); });
        addTapLinks(links, graph, ports, tap->second);
        for (const HeardPort& heard : ports) {
            recorded.insert(heard.port);
        }
    }
}

void addMicrophoneLinks(std::set<PortLink>& links, const Graph& graph, const OwnNodes& own) {
    if (!own.microphone || !own.microphoneStream) {
        return;
    }
    const auto inputs = portsOf(graph, *own.microphoneStream, PortDirection::input);
    const auto ports = portsOf(graph, *own.microphone);
    // A device may have more ports than when the recording started.
    for (std::size_t i = 0; i < ports.size() && !inputs.empty(); ++i) {
        links.insert({ports[i], inputs[i % inputs.size()]});
    }
}

} // namespace

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
    // A stream may outlive its client, whose id may then be reused, even by us.
    return client->second.serial <= stream.serial &&
           (stream.client == self.client || client->second.processId == self.processId);
}

std::set<PortLink> wantedLinks(const Graph& graph, const Self& self, const OwnNodes& own,
                               bool excludesOwnSound) {
    std::set<PortLink> links;
    auto paths = soundPaths(graph);
    std::erase_if(paths, [&](const SoundPath& path) {
        return excludesOwnSound && isOwnSound(graph.nodes.at(path.node), graph, self);
    });
    const auto elsewhere = outputsHeardInMixes(paths, graph);
    for (SoundPath& path : paths) {
        std::erase_if(path.heardOn, [&](ObjectId output) { return elsewhere.contains(output); });
        if (path.bringsNewSound) {
            addPathLinks(links, graph, own, path);
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

bool playsCodedSound(const Graph& graph) {
    return std::ranges::any_of(graph.links, [&](const auto& entry) {
        const auto output = graph.nodes.find(entry.second.inputNode);
        return graph.undividedPorts.contains(entry.second.outputPort) &&
               output != graph.nodes.end() && isOutput(output->second);
    });
}

bool mayCapture(const Graph& graph) {
    return graph.mayExecute && graph.canMakeLinks;
}

} // namespace vantoro::capture
