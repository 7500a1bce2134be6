// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include "capture/graph/graph.h"
#include "capture/graph/graph_rules.h"

namespace vantoro::capture {

/// What the session manager leaves behind when it goes, and is to find when it comes back: it does
/// not take over a node that runs, and connects nothing for 20 seconds where it finds one.
///
/// Our taps run always, so none may be there for a while. The applications' streams that it had
/// connected are heard by nobody, and run if we link them: they are left alone until they are
/// connected to an output again.
class OrphanedStreams {
public:
    /// For how long it is waited for.
    static constexpr std::uint64_t patience = 5'000'000'000; // ns

    /// At each change of the graph, and about twice a second while `awaitsManager`. `monotonic`:
    /// now, in nanoseconds.
    void update(const Graph& graph, std::uint64_t monotonic);

    /// Whether the session manager has gone, and may soon be back.
    bool awaitsManager() const noexcept { return awaitsManager_; }

    /// Takes the links of those that it left out of those that are wanted.
    void leaveAlone(std::set<PortLink>& wanted, const Graph& graph) const;

private:
    std::set<Identity> streams_;
    bool wasManaged_ = false; // ever
    std::optional<std::uint64_t> unmanagedSince_;
    bool awaitsManager_ = false;
};

} // namespace vantoro::capture
