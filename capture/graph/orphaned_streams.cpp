// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/orphaned_streams.h"

namespace vantoro::capture {

void OrphanedStreams::update(const Graph& graph, std::uint64_t monotonic) {
    const bool isManaged = graph.defaultsOfSessionManager.has_value();
    wasManaged_ = wasManaged_ || isManaged;
    if (isManaged || !wasManaged_) {
        unmanagedSince_.reset();
    } else {
        unmanagedSince_ = unmanagedSince_.value_or(monotonic);
    }
    awaitsManager_ = unmanagedSince_ && monotonic - *unmanagedSince_ < patience;
    std::set<Identity> orphans;
    for (const auto& [id, node] : graph.nodes) {
        const Identity stream{id, node.serial};
        const bool becomesOne = unmanagedSince_ && node.autoconnect;
        if ((becomesOne || streams_.contains(stream)) && isPlaybackStream(node) &&
            outputsLinkedTo(id, graph).empty()) {
            orphans.insert(stream);
        }
    }
    streams_ = std::move(orphans);
}

void OrphanedStreams::removeOrphans(std::set<PortLink>& wanted, const Graph& graph) const {
    std::erase_if(wanted, [&](const PortLink& link) {
        const ObjectId node = graph.ports.at(link.output.id).node;
        return streams_.contains({node, graph.nodes.at(node).serial});
    });
}

} // namespace vantoro::capture
