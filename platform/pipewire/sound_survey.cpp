// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/sound_survey.h"

#include <pipewire/pipewire.h>

#include "platform/pipewire/graph_query.h"
#include "platform/pipewire/graph_rules.h"

namespace vantoro::pipewire {

SoundSurvey surveyOf(const Graph& graph) {
    SoundSurvey survey{.serverVersion = graph.serverVersion,
                       .mayCapture = mayCapture(graph),
                       .hasSessionManager = graph.defaultsOfSessionManager.has_value(),
                       .outputs = outputs(graph).size(),
                       .microphones = {}};
    for (auto& device : microphones(graph)) {
        const auto node = findMicrophone(graph, device.id);
        survey.microphones.push_back(
            {.device = device,
             .isDefault = device.id == graph.defaultMicrophone,
             .mixer = node ? graph.nodes.at(*node).mixer : MixerSetting()});
    }
    return survey;
}

std::optional<SoundSurvey> surveySound(std::chrono::seconds limit) {
    const auto graph = queryGraph(limit);
    return graph ? std::optional(surveyOf(*graph)) : std::nullopt;
}

std::string soundLibraryVersion() {
    return pw_get_library_version();
}

} // namespace vantoro::pipewire
