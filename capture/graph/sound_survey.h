// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "capture/graph/graph.h"
#include "engine/recording_types.h"

namespace vantoro::capture {

/// A microphone, for diagnosis.
struct SurveyedMicrophone {
    AudioInputDevice device;
    bool isDefault = false;
    MixerSetting mixer;

    friend bool operator==(const SurveyedMicrophone&, const SurveyedMicrophone&) = default;
};

/// State of the sound server, for diagnosis.
struct SoundSurvey {
    std::string serverVersion;      ///< empty if unknown
    bool mayCapture = false;        ///< may see streams and link to them
    bool hasSessionManager = false; ///< without one, nothing is linked
    std::size_t outputs = 0;
    bool playsCodedSound = false;                ///< cannot be recorded
    std::vector<SurveyedMicrophone> microphones; ///< in the server's order

    friend bool operator==(const SoundSurvey&, const SoundSurvey&) = default;
};

SoundSurvey surveyOf(const Graph& graph);

} // namespace vantoro::capture
