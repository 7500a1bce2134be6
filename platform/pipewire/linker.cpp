// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/linker.h"

#include <string>

namespace vantoro::pipewire {

const pw_proxy_events Linker::events = [] {
    pw_proxy_events table{};
    table.version = PW_VERSION_PROXY_EVENTS;
    // A proxy must not be destroyed in its own callback, so mark it only.
    table.removed = [](void* link) { static_cast<OwnLink*>(link)->failed = true; };
    table.error = [](void* link, int /*sequence*/, int /*result*/, const char* /*message*/) {
        static_cast<OwnLink*>(link)->failed = true;
    };
    return table;
}();

void Linker::apply(const std::set<capture::PortLink>& wanted) {
    std::erase_if(links_, [&](const auto& entry) { return !wanted.contains(entry.first); });
    for (const capture::PortLink& link : wanted) {
        if (!links_.contains(link)) {
            if (auto made = make(link)) {
                links_.emplace(link, std::move(made));
            }
        }
    }
}

bool Linker::forgetFailed() {
    return std::erase_if(links_, [](const auto& entry) { return entry.second->failed; }) > 0;
}

std::unique_ptr<Linker::OwnLink> Linker::make(const capture::PortLink& link) {
    const PropertiesPointer properties(
        pw_properties_new(PW_KEY_LINK_OUTPUT_PORT, std::to_string(link.output.id).c_str(),
                          PW_KEY_LINK_INPUT_PORT, std::to_string(link.input.id).c_str(), nullptr));
    void* const object = pw_core_create_object(core_, "link-factory", PW_TYPE_INTERFACE_Link,
                                               PW_VERSION_LINK, &properties->dict, 0);
    if (object == nullptr) {
        return nullptr;
    }
    auto made = std::make_unique<OwnLink>();
    made->proxy.reset(static_cast<pw_proxy*>(object));
    pw_proxy_add_listener(made->proxy.get(), made->hook.get(), &events, made.get());
    return made;
}

} // namespace vantoro::pipewire
