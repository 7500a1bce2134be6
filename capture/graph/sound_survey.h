// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "capture/graph/graph.h"
#include "capture/graph/mixer_setting.h"
#include "engine/recording_types.h"

namespace vantoro::capture {

/// A microphone as a user who looks for a fault wants to know it.
struct SurveyedMicrophone {
    AudioInputDevice device;
    bool isDefault = false;
    MixerSetting mixer;

    friend bool operator==(const SurveyedMicrophone&, const SurveyedMicrophone&) = default;
};

/// What recording finds at the sound server.
struct SoundSurvey {
    std::string serverVersion;      ///< empty where the server has not told
    bool mayCapture = false;        ///< streams may be seen, and links to them made
    bool hasSessionManager = false; ///< without one nothing gets linked
    std::size_t outputs = 0;
    bool playsCodedSound = false;                ///< which cannot be recorded
    std::vector<SurveyedMicrophone> microphones; ///< in the order in which the server lists them

    friend bool operator==(const SoundSurvey&, const SoundSurvey&) = default;
};

SoundSurvey surveyOf(const Graph& graph);

} // namespace vantoro::capture
