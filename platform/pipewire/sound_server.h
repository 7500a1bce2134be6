// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "capture/graph/graph.h"
#include "capture/graph/sound_survey.h"
#include "control/ports/audio_devices.h"
#include "engine/ports/permissions.h"

namespace vantoro::pipewire {

/// What the sound server has at the moment of the call. Each call asks over a connection of its
/// own, which is given up at the limit: then, as without a server, nothing is there. Capture is
/// allowed when the server lets us use it and make links; no desktop has a dialog for that. Task
/// threads, several at a time, and the main thread.
class SoundServer final : public AudioDevices, public CaptureAccess {
public:
    explicit SoundServer(std::chrono::seconds limit = std::chrono::seconds(2)) : limit_(limit) {}

    FoundDevices find() override;
    bool isGranted() override;
    std::optional<capture::SoundSurvey> survey() const;

private:
    std::optional<capture::Graph> ask() const;

    std::chrono::seconds limit_;
};

/// Of the sound server's library that this program runs with.
std::string soundLibraryVersion();

} // namespace vantoro::pipewire
