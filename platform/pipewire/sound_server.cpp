// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/sound_server.h"

#include <pipewire/pipewire.h>

#include "capture/graph/graph_rules.h"
#include "capture/graph/microphones.h"
#include "engine/failure.h"
#include "platform/pipewire/connection.h"
#include "platform/pipewire/graph_mirror.h"

namespace vantoro::pipewire {

std::optional<capture::Graph> SoundServer::ask() const {
    try {
        Connection connection({.lost = [] {}, .identified = [] {}});
        const GraphMirror mirror(connection.core(), [] {});
        connection.run();
        const bool answered = connection.awaitObjects(std::chrono::steady_clock::now() + limit_);
        connection.end(); // so that the mirror may go
        return answered ? std::optional(mirror.graph()) : std::nullopt;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

FoundDevices SoundServer::find() {
    const auto graph = ask();
    if (!graph) {
        return {};
    }
    const bool hasDefault = findMicrophone(*graph, graph->defaultMicrophone).has_value();
    return {.mayCapture = mayCapture(*graph),
            .microphones = microphones(*graph),
            .defaultMicrophone =
                hasDefault ? std::optional(graph->defaultMicrophone) : std::nullopt};
}

bool SoundServer::isGranted() {
    const auto graph = ask();
    return graph && mayCapture(*graph);
}

std::optional<capture::SoundSurvey> SoundServer::survey() const {
    const auto graph = ask();
    return graph ? std::optional(surveyOf(*graph)) : std::nullopt;
}

std::string soundLibraryVersion() {
    return pw_get_library_version();
}

} // namespace vantoro::pipewire
