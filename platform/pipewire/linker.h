// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// Keeps the links that are wanted in existence. On the loop, or under its lock, only.
class Linker {
public:
    explicit Linker(pw_core* core) : core_(core) {}

    /// Makes what is missing and takes away what is no longer wanted.
    void apply(const std::set<capture::PortLink>& wanted);

    /// Links that could not be made, or were taken away by somebody, are made again by the next
    /// `apply`. True when there were any.
    bool forgetFailed();

private:
    struct OwnLink {
        ProxyPointer proxy;
        Hook hook; // after the proxy, so that it goes first
        bool failed = false;
    };

    std::unique_ptr<OwnLink> make(const capture::PortLink& link);
    static void removed(void* data);
    static void failed(void* data, int sequence, int result, const char* message);

    static const pw_proxy_events events;

    pw_core* core_;
    std::map<capture::PortLink, std::unique_ptr<OwnLink>> links_;
};

} // namespace vantoro::pipewire
