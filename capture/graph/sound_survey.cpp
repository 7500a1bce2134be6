// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/sound_survey.h"

#include "capture/graph/graph_rules.h"

namespace vantoro::capture {

SoundSurvey surveyOf(const Graph& graph) {
    SoundSurvey survey{.serverVersion = graph.serverVersion,
                       .mayCapture = mayCapture(graph),
                       .hasSessionManager = graph.defaultsOfSessionManager.has_value(),
                       .outputs = outputs(graph).size(),
                       .playsCodedSound = playsCodedSound(graph),
                       .microphones = {}};
    for (auto& device : microphones(graph)) {
        const auto microphone = findMicrophone(graph, device.id);
        if (microphone && microphone->channel.empty()) { // single inputs have no mixer setting
            survey.microphones.push_back({.device = device,
                                          .isDefault = device.id == graph.defaultMicrophone,
                                          .mixer = graph.nodes.at(microphone->device.id).mixer});
        }
    }
    return survey;
}

} // namespace vantoro::capture
