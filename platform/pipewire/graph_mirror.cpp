// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/graph_mirror.h"

#include <array>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include <spa/utils/json.h>

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/node_parameters.h"
#include "platform/pipewire/server_calls.h"

namespace vantoro::pipewire {

namespace {

capture::Properties propertiesOf(const spa_dict* dictionary) {
    capture::Properties result;
    if (dictionary != nullptr) {
        for (std::uint32_t i = 0; i < dictionary->n_items; ++i) {
            const spa_dict_item& item = dictionary->items[i];
            result[item.key] = item.value != nullptr ? item.value : "";
        }
    }
    return result;
}

std::string text(const capture::Properties& properties, const char* key) {
    const auto found = properties.find(key);
    return found != properties.end() ? found->second : std::string();
}

capture::ObjectId number(const capture::Properties& properties, const char* key) {
    const std::string value = text(properties, key);
    capture::ObjectId result = SPA_ID_INVALID;
    std::from_chars(value.data(), value.data() + value.size(), result);
    return result;
}

} // namespace

const pw_core_events GraphMirror::coreEvents = [] {
    pw_core_events events{};
    events.version = PW_VERSION_CORE_EVENTS;
    events.info = [](void* data, const pw_core_info* info) {
        auto& self = *static_cast<GraphMirror*>(data);
        self.graph_.serverVersion = info->version != nullptr ? info->version : "";
    };
    return events;
}();

const pw_registry_events GraphMirror::registryEvents = [] {
    pw_registry_events events{};
    events.version = PW_VERSION_REGISTRY_EVENTS;
    events.global = [](void* data, std::uint32_t id, std::uint32_t permissions, const char* type,
                       std::uint32_t /*version*/, const spa_dict* properties) {
        auto& self = *static_cast<GraphMirror*>(data);
        self.addObject(id, permissions, type, propertiesOf(properties));
        self.changed_();
    };
    events.global_remove = [](void* data, std::uint32_t id) {
        auto& self = *static_cast<GraphMirror*>(data);
        self.removeObject(id);
        self.changed_();
    };
    return events;
}();

const pw_node_events GraphMirror::nodeEvents = [] {
    pw_node_events events{};
    events.version = PW_VERSION_NODE_EVENTS;
    events.info = nodeInfo;
    events.param = nodeParameter;
    return events;
}();

const pw_metadata_events GraphMirror::metadataEvents = [] {
    pw_metadata_events events{};
    events.version = PW_VERSION_METADATA_EVENTS;
    events.property = [](void* data, std::uint32_t subject, const char* key, const char* /*type*/,
                         const char* value) {
        GraphMirror& self = static_cast<Bound*>(data)->mirror;
        self.setMetadata(subject, key, value);
        self.changed_();
        return 0;
    };
    return events;
}();

GraphMirror::GraphMirror(pw_core* core, std::function<void()> changed)
    : changed_(std::move(changed)) {
    listen(core, coreHook_.get(), coreEvents, this);
    auto* const registry = pw_core_get_registry(core, PW_VERSION_REGISTRY, 0);
    registry_.reset(reinterpret_cast<pw_proxy*>(registry));
    listen(registry, registryHook_.get(), registryEvents, this);
}

GraphMirror::Bound* GraphMirror::bind(capture::ObjectId id, const char* type,
                                      std::uint32_t version) {
    auto* const registry = reinterpret_cast<pw_registry*>(registry_.get());
    void* const object = pipewire::bind(registry, id, type, version);
    if (object == nullptr) {
        return nullptr;
    }
    auto bound = std::make_unique<Bound>(*this, id, ProxyPointer(static_cast<pw_proxy*>(object)));
    return bound_.insert_or_assign(id, std::move(bound)).first->second.get();
}

void GraphMirror::addObject(capture::ObjectId id, std::uint32_t permissions,
                            const std::string& type, const capture::Properties& properties) {
    if (type == PW_TYPE_INTERFACE_Core) {
        graph_.mayExecute = (permissions & PW_PERM_X) != 0;
    } else if (type == PW_TYPE_INTERFACE_Factory &&
               text(properties, "factory.name") == "link-factory") {
        graph_.canMakeLinks = (permissions & PW_PERM_R) != 0;
    } else if (type == PW_TYPE_INTERFACE_Client) {
        graph_.clients[id] = {.processId = text(properties, "pipewire.sec.pid"),
                              .serial = capture::serialOf(properties)};
    } else if (type == PW_TYPE_INTERFACE_Node) {
        addNode(id, properties);
    } else if (type == PW_TYPE_INTERFACE_Port) {
        addPort(id, properties);
    } else if (type == PW_TYPE_INTERFACE_Link) {
        addLink(id, properties);
    } else if (type == PW_TYPE_INTERFACE_Metadata &&
               text(properties, "metadata.name") == "default") {
        addMetadata(id, properties);
    }
}

void GraphMirror::addNode(capture::ObjectId id, const capture::Properties& properties) {
    capture::Node node;
    readProperties(node, properties);
    // Only the node itself reports its link group, target and volume.
    if (isPlaybackStream(node) || isCaptureStream(node) || isOutput(node) || isMicrophone(node)) {
        if (Bound* const bound = bind(id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE)) {
            pw_proxy_add_object_listener(bound->proxy.get(), bound->hook.get(), &nodeEvents, bound);
            if (isMicrophone(node) || isPlaybackStream(node)) {
                subscribe(reinterpret_cast<pw_node*>(bound->proxy.get()), SPA_PARAM_Props);
            }
        }
    }
    graph_.nodes.insert_or_assign(id, std::move(node));
}

void GraphMirror::addPort(capture::ObjectId id, const capture::Properties& properties) {
    const std::string format = text(properties, "format.dsp");
    if (format.empty()) {
        graph_.undividedPorts.insert(id);
    }
    if (format.find("audio") == std::string::npos) {
        return;
    }
    graph_.ports.insert_or_assign(
        id, capture::Port{.node = number(properties, "node.id"),
                          .direction = text(properties, "port.direction") == "out"
                                           ? capture::PortDirection::output
                                           : capture::PortDirection::input,
                          .channel = text(properties, "audio.channel"),
                          .serial = capture::serialOf(properties),
                          .isMonitor = text(properties, "port.monitor") == "true"});
}

void GraphMirror::addLink(capture::ObjectId id, const capture::Properties& properties) {
    graph_.links.insert_or_assign(
        id, capture::Link{.outputNode = number(properties, "link.output.node"),
                          .inputNode = number(properties, "link.input.node"),
                          .outputPort = number(properties, "link.output.port"),
                          .inputPort = number(properties, "link.input.port")});
}

void GraphMirror::addMetadata(capture::ObjectId id, const capture::Properties& properties) {
    // A server without a session manager may have created one itself.
    if (number(properties, "client.id") != SPA_ID_INVALID) {
        graph_.defaultsOfSessionManager = id;
    }
    if (Bound* const metadata = bind(id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA)) {
        listen(reinterpret_cast<pw_metadata*>(metadata->proxy.get()), metadata->hook.get(),
               metadataEvents, metadata);
    }
}

void GraphMirror::removeObject(capture::ObjectId id) {
    if (graph_.defaultsOfSessionManager == id) {
        graph_.defaultsOfSessionManager.reset();
    }
    bound_.erase(id);
    graph_.nodes.erase(id);
    graph_.ports.erase(id);
    graph_.undividedPorts.erase(id);
    graph_.links.erase(id);
    graph_.clients.erase(id);
    graph_.targets.erase(id);
}

void GraphMirror::setMetadata(capture::ObjectId subject, const char* key, const char* value) {
    if (key == nullptr) { // the subject's metadata is cleared
        graph_.targets.erase(subject);
        return;
    }
    const std::string_view name = key;
    if (subject == PW_ID_CORE && name == "default.audio.sink") {
        graph_.defaultOutput = defaultDeviceName(value);
    } else if (subject == PW_ID_CORE && name == "default.audio.source") {
        graph_.defaultMicrophone = defaultDeviceName(value);
    } else if (name == "target.object") {
        if (value != nullptr) {
            graph_.targets[subject] = value;
        } else {
            graph_.targets.erase(subject);
        }
    }
}

void GraphMirror::nodeInfo(void* data, const pw_node_info* info) {
    const auto& bound = *static_cast<Bound*>(data);
    const auto node = bound.mirror.graph_.nodes.find(bound.id);
    if ((info->change_mask & PW_NODE_CHANGE_MASK_PROPS) == 0 ||
        node == bound.mirror.graph_.nodes.end()) {
        return;
    }
    const capture::Node before = node->second;
    readProperties(node->second, propertiesOf(info->props));
    if (node->second != before) {
        bound.mirror.changed_();
    }
}

void GraphMirror::nodeParameter(void* data, int /*sequence*/, std::uint32_t id,
                                std::uint32_t /*index*/, std::uint32_t /*next*/,
                                const spa_pod* parameter) {
    const auto& bound = *static_cast<Bound*>(data);
    const auto node = bound.mirror.graph_.nodes.find(bound.id);
    if (id != SPA_PARAM_Props || node == bound.mirror.graph_.nodes.end()) {
        return;
    }
    const capture::Node before = node->second;
    if (isMicrophone(before)) {
        readMixerSetting(node->second.mixer, parameter);
    } else {
        readChannelMap(node->second.channels, parameter);
    }
    if (node->second != before) {
        bound.mirror.changed_();
    }
}

std::string defaultDeviceName(const char* json) {
    if (json == nullptr) {
        return {};
    }
    spa_json document{};
    spa_json object{};
    spa_json_init(&document, json, std::strlen(json));
    if (spa_json_enter_object(&document, &object) <= 0) {
        return {};
    }
    std::array<char, 1024> key{};
    std::array<char, 1024> value{};
    while (spa_json_get_string(&object, key.data(), key.size()) > 0) {
        if (std::string_view(key.data()) != "name") {
            const char* ignored = nullptr;
            if (spa_json_next(&object, &ignored) <= 0) {
                break;
            }
        } else if (spa_json_get_string(&object, value.data(), value.size()) > 0) {
            return value.data();
        }
    }
    return {};
}

} // namespace vantoro::pipewire
