// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include <pipewire/extensions/metadata.h>

#include "capture/graph/graph.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// Keeps a `Graph` in step with the server's registry. Only on the loop or under its lock.
class GraphMirror {
public:
    /// Calls `changed` on the loop after every change.
    GraphMirror(pw_core* core, std::function<void()> changed);

    const capture::Graph& graph() const noexcept { return graph_; }

private:
    /// An object with more details than the registry shows.
    struct Bound {
        GraphMirror& mirror;
        capture::ObjectId id;
        ProxyPointer proxy;
        Hook hook{}; // after the proxy: must be destroyed first
    };

    void addObject(capture::ObjectId id, std::uint32_t permissions, const std::string& type,
                   const capture::Properties& properties);
    void addNode(capture::ObjectId id, const capture::Properties& properties);
    void addPort(capture::ObjectId id, const capture::Properties& properties);
    void addLink(capture::ObjectId id, const capture::Properties& properties);
    void removeObject(capture::ObjectId id);
    Bound* bind(capture::ObjectId id, const char* type, std::uint32_t version);
    void addMetadata(capture::ObjectId id, const capture::Properties& properties);
    void setMetadata(capture::ObjectId subject, const char* key, const char* value);

    static void nodeInfo(void* data, const pw_node_info* info);
    static void nodeParameter(void* data, int sequence, std::uint32_t id, std::uint32_t index,
                              std::uint32_t next, const spa_pod* parameter);

    static const pw_core_events coreEvents;
    static const pw_registry_events registryEvents;
    static const pw_node_events nodeEvents;
    static const pw_metadata_events metadataEvents;

    std::function<void()> changed_;
    capture::Graph graph_;
    Hook coreHook_;
    ProxyPointer registry_;
    Hook registryHook_;
    std::map<capture::ObjectId, std::unique_ptr<Bound>> bound_;
};

/// Parses the metadata value of a default device: {"name":"…"}. Empty if there is no name.
std::string defaultDeviceName(const char* json);

} // namespace vantoro::pipewire
