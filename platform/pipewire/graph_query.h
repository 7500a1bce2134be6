// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "capture/graph/graph.h"
#include "capture/graph/sound_survey.h"

namespace vantoro::pipewire {

/// The sound server's objects at this moment; nothing when it is not there, or has not answered
/// within the limit. Connects anew each time. Task threads, and the main thread.
std::optional<capture::Graph> queryGraph(std::chrono::seconds limit = std::chrono::seconds(2));

/// What recording finds at that moment; nothing as above.
std::optional<capture::SoundSurvey> surveySound(std::chrono::seconds limit);

/// Of the sound server's library that this program runs with.
std::string soundLibraryVersion();

} // namespace vantoro::pipewire
