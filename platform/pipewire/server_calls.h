// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>

// PipeWire's method calls are macros with C casts, which our compiler options refuse elsewhere.

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace vantoro::pipewire {

inline void listen(pw_core* core, spa_hook* hook, const pw_core_events& events, void* data) {
    pw_core_add_listener(core, hook, &events, data);
}

inline void listen(pw_client* client, spa_hook* hook, const pw_client_events& events, void* data) {
    pw_client_add_listener(client, hook, &events, data);
}

inline void listen(pw_registry* registry, spa_hook* hook, const pw_registry_events& events,
                   void* data) {
    pw_registry_add_listener(registry, hook, &events, data);
}

inline void listen(pw_metadata* metadata, spa_hook* hook, const pw_metadata_events& events,
                   void* data) {
    pw_metadata_add_listener(metadata, hook, &events, data);
}

/// Requests the node's parameters of this kind now and on every change; refused, yields none.
inline void subscribe(pw_node* node, std::uint32_t kind) {
    static_cast<void>(pw_node_subscribe_params(node, &kind, 1));
}

/// The server answers with the returned number.
inline int sync(pw_core* core) {
    return pw_core_sync(core, PW_ID_CORE, 0);
}

/// Null if the server refuses.
inline void* bind(pw_registry* registry, std::uint32_t id, const char* type,
                  std::uint32_t version) {
    return pw_registry_bind(registry, id, type, version, 0);
}

} // namespace vantoro::pipewire

#pragma GCC diagnostic pop
