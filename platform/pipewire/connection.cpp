// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/connection.h"

#include <cerrno>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>

#include <unistd.h>

#include "engine/failure.h"
#include "platform/pipewire/bus_use.h"
#include "platform/pipewire/server_calls.h"

namespace vantoro::pipewire {

namespace {

/// The library looks up the user's name in a way that is not thread-safe.
std::mutex contextMutex;

/// The configuration that requests real-time scheduling. From 1.3.81 on that is the common one, and
/// PipeWire prints a warning about the other.
const char* realTimeConfiguration() {
    return strverscmp(pw_get_library_version(), "1.3.81") < 0 ? "client-rt.conf" : "client.conf";
}

ContextPointer makeContext(pw_loop* loop) {
    const std::lock_guard lock(contextMutex);
    auto* const properties =
        pw_properties_new(PW_KEY_CONFIG_NAME, realTimeConfiguration(), nullptr);
    if (properties != nullptr && !mayUseBuses()) {
        pw_properties_set(properties, "support.dbus", "false");
    }
    ContextPointer context(pw_context_new(loop, properties, 0));
    if (!context) {
        throw Failure(FailureCode::soundSystemNotInitialized);
    }
    return context;
}

} // namespace

const pw_core_events Connection::coreEvents = [] {
    pw_core_events events{};
    events.version = PW_VERSION_CORE_EVENTS;
    events.done = [](void* data, std::uint32_t id, int sequence) {
        auto& self = *static_cast<Connection*>(data);
        if (id == PW_ID_CORE && sequence == self.awaitedSequence_) {
            self.answered_.set();
        }
    };
    events.error = [](void* data, std::uint32_t id, int /*sequence*/, int result,
                      const char* /*message*/) {
        auto& self = *static_cast<Connection*>(data);
        // Other errors concern single objects and reach their owners.
        if (id == PW_ID_CORE && result == -EPIPE) {
            self.lost_ = true;
            self.answered_.set();
            self.callbacks_.lost();
        }
    };
    return events;
}();

const pw_client_events Connection::clientEvents = [] {
    pw_client_events events{};
    events.version = PW_VERSION_CLIENT_EVENTS;
    events.info = [](void* data, const pw_client_info* info) {
        auto& self = *static_cast<Connection*>(data);
        self.self_.client = info->id;
        self.callbacks_.identified();
    };
    return events;
}();

Connection::Connection(Callbacks callbacks)
    : callbacks_(std::move(callbacks)),
      self_{.client = std::nullopt, .processId = std::to_string(getpid())},
      threadLoop_(pw_thread_loop_new("vantoro-sound", nullptr)) {
    if (!threadLoop_) {
        throw Failure(FailureCode::soundSystemNotInitialized);
    }
    context_ = makeContext(loop());
    core_.reset(pw_context_connect(
        context_.get(),
        pw_properties_new(PW_KEY_APP_NAME, "Vantoro", PW_KEY_APP_ID, "vantoro", nullptr), 0));
    if (!core_) {
        throw Failure(FailureCode::serverUnreachable);
    }
    listen(core_.get(), coreHook_.get(), coreEvents, this);
    listen(pw_core_get_client(core_.get()), clientHook_.get(), clientEvents, this);
}

void Connection::run() {
    if (pw_thread_loop_start(threadLoop_.get()) < 0) {
        throw Failure(FailureCode::soundSystemNotInitialized);
    }
}

Connection::~Connection() {
    end();
}

void Connection::end() {
    pw_thread_loop_stop(threadLoop_.get());
}

/// The first reply follows all objects, the second their details.
bool Connection::awaitObjects(Deadline deadline) {
    return roundTrip(deadline) && roundTrip(deadline);
}

/// Returns once the server has answered all previous requests.
bool Connection::roundTrip(Deadline deadline) {
    {
        const LoopLock lock(threadLoop_.get());
        if (lost_) {
            return false;
        }
        answered_.clear();
        awaitedSequence_ = sync(core_.get());
    }
    const bool answered = answered_.waitUntil(deadline);
    const LoopLock lock(threadLoop_.get());
    return answered && !lost_;
}

} // namespace vantoro::pipewire
