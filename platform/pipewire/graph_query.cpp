// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/graph_query.h"

#include <pipewire/pipewire.h>

#include "platform/pipewire/capture_error.h"
#include "platform/pipewire/connection.h"
#include "platform/pipewire/graph_mirror.h"

namespace vantoro::pipewire {

namespace {

std::optional<capture::Graph> query(Connection& connection, std::chrono::seconds limit) {
    std::optional<GraphMirror> mirror;
    mirror.emplace(connection.core(), [] {});
    connection.run();
    const Deadline deadline = std::chrono::steady_clock::now() + limit;
    // The first answer comes behind all objects, the second behind what they tell of themselves.
    const bool answered = connection.roundTrip(deadline) && connection.roundTrip(deadline);
    const LoopLock lock(connection.threadLoop());
    auto graph = answered ? std::optional(mirror->graph()) : std::nullopt;
    mirror.reset();
    return graph;
}

} // namespace

std::optional<capture::Graph> queryGraph(std::chrono::seconds limit) {
    try {
        Connection connection({.lost = [] {}, .identified = [] {}});
        return query(connection, limit);
    } catch (const CaptureError&) {
        return std::nullopt;
    }
}

std::optional<capture::SoundSurvey> surveySound(std::chrono::seconds limit) {
    const auto graph = queryGraph(limit);
    return graph ? std::optional(surveyOf(*graph)) : std::nullopt;
}

std::string soundLibraryVersion() {
    return pw_get_library_version();
}

} // namespace vantoro::pipewire
