// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include "capture/graph/graph.h"
#include "capture/graph/graph_rules.h"

namespace vantoro::capture {

/// Handles the restart of the session manager, which connects nothing for 20 seconds if it finds
/// running nodes. Our taps always run, so they must be closed meanwhile. Streams that it leaves
/// unconnected are left alone until they have an output again, since a link would make them run.
class OrphanedStreams {
public:
    /// How long to wait for it.
    static constexpr std::uint64_t patience = 5'000'000'000; // ns

    /// Call at each change of the graph, and about twice a second while `awaitsManager`.
    /// `monotonic`: now, in nanoseconds.
    void update(const Graph& graph, std::uint64_t monotonic);

    /// Whether the session manager is gone and may soon return.
    bool awaitsManager() const noexcept { return awaitsManager_; }

    /// Removes the links of orphaned streams from the wanted ones.
    void removeOrphans(std::set<PortLink>& wanted, const Graph& graph) const;

private:
    std::set<Identity> streams_;
    bool wasManaged_ = false; // at any time so far
    std::optional<std::uint64_t> unmanagedSince_;
    bool awaitsManager_ = false;
};

} // namespace vantoro::capture
