// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/platform/pipewire/device_in_place.h"

#include <chrono>
#include <stdexcept>

#include "platform/pipewire/connection.h"
#include "tests/platform/pipewire/sound_session.h"

namespace vantoro::testing {

using namespace vantoro::pipewire;

namespace {

// The call is a macro with a C-style cast.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"

void destroy(pw_registry* registry, capture::ObjectId id) {
    static_cast<void>(pw_registry_destroy(registry, id));
}

#pragma GCC diagnostic pop

} // namespace

class DeviceInPlace::Maker {
public:
    Maker(capture::ObjectId replaced, const std::string& name, const std::string& mediaClass,
          const std::string& positions)
        : connection_({.lost = [] {}, .identified = [] {}}) {
        const PropertiesPointer properties(pw_properties_new(
            "factory.name", "support.null-audio-sink", PW_KEY_NODE_NAME, name.c_str(),
            PW_KEY_MEDIA_CLASS, mediaClass.c_str(), "audio.position", positions.c_str(), nullptr));
        pw_registry* const registry =
            pw_core_get_registry(connection_.core(), PW_VERSION_REGISTRY, 0);
        registry_.reset(reinterpret_cast<pw_proxy*>(registry));
        // Requests made before the loop runs reach the server together.
        destroy(registry, replaced);
        device_.reset(static_cast<pw_proxy*>(
            pw_core_create_object(connection_.core(), "adapter", PW_TYPE_INTERFACE_Node,
                                  PW_VERSION_NODE, &properties->dict, 0)));
        connection_.run();
        if (!connection_.awaitObjects(std::chrono::steady_clock::now() +
                                      std::chrono::seconds(10))) {
            throw std::runtime_error("no device " + name);
        }
    }

    Maker(const Maker&) = delete;
    Maker& operator=(const Maker&) = delete;

    ~Maker() {
        const LoopLock lock(connection_.threadLoop());
        device_.reset();
        registry_.reset();
    }

    capture::ObjectId id() {
        const LoopLock lock(connection_.threadLoop());
        return pw_proxy_get_bound_id(device_.get());
    }

private:
    Connection connection_;
    ProxyPointer registry_;
    ProxyPointer device_;
};

DeviceInPlace::DeviceInPlace(const std::string& replacedNode, const std::string& name,
                             const std::string& mediaClass, const std::string& positions) {
    const auto replaced =
        static_cast<capture::ObjectId>(std::stoul(SoundSession::nodeId(replacedNode)));
    maker_ = std::make_unique<Maker>(replaced, name, mediaClass, positions);
    hasTakenTheId_ = maker_->id() == replaced;
}

DeviceInPlace::~DeviceInPlace() = default;

} // namespace vantoro::testing
