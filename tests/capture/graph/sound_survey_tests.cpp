// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/graph/sound_survey.h"

#include <gtest/gtest.h>

namespace vantoro::testing {
namespace {

using namespace capture;

Node node(const char* mediaClass, const char* name, MixerSetting mixer = {}) {
    Node made;
    made.mediaClass = mediaClass;
    made.name = name;
    made.mixer = mixer;
    return made;
}

TEST(SoundSurvey, hasWhatTheGraphHas) {
    Graph graph;
    graph.nodes = {{4, node("Audio/Sink", "speakers")},
                   {5, node("Audio/Sink", "headphones")},
                   {6, node("Audio/Source", "laptop", {.isMuted = true})},
                   {7, node("Audio/Source", "headset")},
                   {8, node("Stream/Output/Audio", "player")}};
    graph.nodes[7].description = "Headset";
    graph.defaultMicrophone = "headset";
    graph.defaultsOfSessionManager = 9;
    graph.serverVersion = "0.3.65";
    graph.mayExecute = true;
    graph.canMakeLinks = true;
    graph.undividedPorts = {10};
    graph.links[11] = {.outputNode = 8, .inputNode = 5, .outputPort = 10};
    const SoundSurvey expected{
        .serverVersion = "0.3.65",
        .mayCapture = true,
        .hasSessionManager = true,
        .outputs = 2,
        .playsCodedSound = true,
        .microphones = {
            {.device = {"laptop", "laptop"}, .isDefault = false, .mixer = {.isMuted = true}},
            {.device = {"headset", "Headset"}, .isDefault = true, .mixer = {}}}};
    EXPECT_EQ(surveyOf(graph), expected);
}

TEST(SoundSurvey, isEmptyWhereNothingIsShown) {
    EXPECT_EQ(surveyOf(Graph()), SoundSurvey());
}

TEST(SoundSurvey, captureNeedsBothServerPermissions) {
    for (const bool mayExecute : {false, true}) {
        for (const bool canMakeLinks : {false, true}) {
            Graph graph;
            graph.mayExecute = mayExecute;
            graph.canMakeLinks = canMakeLinks;
            EXPECT_EQ(surveyOf(graph).mayCapture, mayExecute && canMakeLinks);
        }
    }
}

} // namespace
} // namespace vantoro::testing
