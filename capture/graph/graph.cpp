// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/graph.h"

#include <charconv>

namespace vantoro::capture {

namespace {

void read(std::string& value, const Properties& properties, const char* key) {
    if (const auto found = properties.find(key); found != properties.end()) {
        value = found->second;
    }
}

void read(bool& value, const Properties& properties, const char* key) {
    if (const auto found = properties.find(key); found != properties.end()) {
        value = found->second == "true" || found->second == "1";
    }
}

} // namespace

std::vector<Identity> portsOf(const Graph& graph, ObjectId node, PortDirection direction) {
    std::vector<Identity> result;
    for (const auto& [id, port] : graph.ports) {
        if (port.node == node && port.direction == direction) {
            result.push_back({id, port.serial});
        }
    }
    return result;
}

std::uint64_t serialOf(const Properties& properties) {
    std::uint64_t serial = 0;
    if (const auto found = properties.find("object.serial"); found != properties.end()) {
        const std::string& text = found->second;
        std::from_chars(text.data(), text.data() + text.size(), serial);
    }
    return serial;
}

void readProperties(Node& node, const Properties& properties) {
    read(node.mediaClass, properties, "media.class");
    read(node.name, properties, "node.name");
    read(node.description, properties, "node.description");
    if (const std::uint64_t serial = serialOf(properties); serial != 0) {
        node.serial = serial;
    }
    read(node.linkGroup, properties, "node.link-group");
    read(node.targetObject, properties, "node.target"); // older name of the next key
    read(node.targetObject, properties, "target.object");
    read(node.processId, properties, "application.process.id");
    read(node.autoconnect, properties, "node.autoconnect");
    read(node.markedAsOwn, properties, ownSoundProperty);
    node.isOfDevice = node.isOfDevice || properties.contains("device.id");
    if (const auto client = properties.find("client.id"); client != properties.end()) {
        ObjectId id = 0;
        const char* const end = client->second.data() + client->second.size();
        if (std::from_chars(client->second.data(), end, id).ec == std::errc{}) {
            node.client = id;
        }
    }
}

} // namespace vantoro::capture
