// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <memory>
#include <set>

#include "capture/graph/graph_rules.h"
#include "platform/pipewire/handles.h"

namespace vantoro::pipewire {

/// Creates and removes links as wanted. Only on the loop or under its lock.
class Linker {
public:
    explicit Linker(pw_core* core) : core_(core) {}

    /// Creates missing links and removes those no longer wanted.
    void apply(const std::set<capture::PortLink>& wanted);

    /// Lets the next `apply` recreate links that failed or that another program removed. True if
    /// there were any.
    bool forgetFailed();

private:
    struct OwnLink {
        ProxyPointer proxy;
        Hook hook; // after the proxy: must be destroyed first
        bool failed = false;
    };

    std::unique_ptr<OwnLink> make(const capture::PortLink& link);

    static const pw_proxy_events events;

    pw_core* core_;
    std::map<capture::PortLink, std::unique_ptr<OwnLink>> links_;
};

} // namespace vantoro::pipewire
