// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/microphones.h"

#include <algorithm>
#include <string_view>

#include "capture/graph/sound_path.h"

namespace vantoro::capture {

namespace {

/// Two inputs count as the sides of one stereo microphone.
constexpr std::size_t maximumSides = 2;

bool contains(const std::vector<std::string>& channels, std::string_view channel) {
    return std::ranges::find(channels, channel) != channels.end();
}

/// The inputs that can be selected individually, by channel.
std::vector<std::string> inputsOf(const Graph& graph, const Identity& device) {
    const auto ports = portsOf(graph, {.device = device, .channel = {}});
    std::vector<std::string> result;
    if (ports.size() > maximumSides) {
        for (const Identity& port : ports) {
            const std::string& channel = graph.ports.at(port.id).channel;
            if (!channel.empty() && !contains(result, channel)) {
                result.push_back(channel);
            }
        }
    }
    return result;
}

} // namespace

std::vector<AudioInputDevice> microphones(const Graph& graph) {
    std::vector<AudioInputDevice> result;
    for (const auto& [id, node] : graph.nodes) {
        if (!isMicrophone(node) || node.name.empty()) {
            continue;
        }
        const std::string& shown = node.description.empty() ? node.name : node.description;
        result.push_back({node.name, shown});
        for (const std::string& channel : inputsOf(graph, {id, node.serial})) {
            result.push_back({node.name + ":" + channel, shown + ": " + channel});
        }
    }
    return result;
}

std::optional<Microphone> findMicrophone(const Graph& graph, const std::string& identifier) {
    for (const auto& [id, node] : graph.nodes) {
        if (!isMicrophone(node) || node.name.empty() || !identifier.starts_with(node.name)) {
            continue;
        }
        const Identity device{id, node.serial};
        const std::string rest = identifier.substr(node.name.size());
        if (rest.empty() ||
            (rest.front() == ':' && contains(inputsOf(graph, device), rest.substr(1)))) {
            return Microphone{.device = device, .channel = rest.empty() ? "" : rest.substr(1)};
        }
    }
    return std::nullopt;
}

const Node* deviceOf(const Graph& graph, const Microphone& microphone) {
    const auto found = graph.nodes.find(microphone.device.id);
    const bool isThere = found != graph.nodes.end() &&
                         found->second.serial == microphone.device.serial &&
                         isMicrophone(found->second);
    return isThere ? &found->second : nullptr;
}

std::vector<Identity> portsOf(const Graph& graph, const Microphone& microphone) {
    const Node* const node = deviceOf(graph, microphone);
    if (node == nullptr) {
        return {};
    }
    auto ports = portsOf(graph, microphone.device.id, PortDirection::output);
    const auto isMonitor = [&](const Identity& port) { return graph.ports.at(port.id).isMonitor; };
    // A virtual microphone, which programs play into, has only monitor ports.
    if (node->mediaClass == "Audio/Source" || !std::ranges::all_of(ports, isMonitor)) {
        std::erase_if(ports, isMonitor);
    }
    std::erase_if(ports, [&](const Identity& port) {
        return !microphone.channel.empty() && graph.ports.at(port.id).channel != microphone.channel;
    });
    return ports;
}

FollowedMicrophone::Presence FollowedMicrophone::update(const Graph& graph,
                                                        std::uint64_t monotonic) {
    const bool isSame = deviceOf(graph, source_) != nullptr;
    if (const auto found = isSame ? source_ : findMicrophone(graph, name_)) {
        source_ = *found;
        awaySince_.reset();
        return Presence::here;
    }
    awaySince_ = awaySince_.value_or(monotonic);
    return monotonic - *awaySince_ < patience ? Presence::away : Presence::gone;
}

} // namespace vantoro::capture
