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
                       .playsCodedSound = playsCodedSound(graph),
                       .microphones = {}};
    for (auto& device : microphones(graph)) {
        const auto microphone = findMicrophone(graph, device.id);
        if (microphone && microphone->channel.empty()) { // its inputs have no mixer of their own
            survey.microphones.push_back({.device = device,
                                          .isDefault = device.id == graph.defaultMicrophone,
                                          .mixer = graph.nodes.at(microphone->device.id).mixer});
        }
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
