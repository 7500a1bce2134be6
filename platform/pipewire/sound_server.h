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

/// Queries the sound server over a new connection. Finds nothing without a server or after the time
/// limit. Capture is allowed if the server lets us use it and create links; no desktop has a prompt
/// for that. Task threads, several at a time, and the main thread.
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

/// Version of the sound server's client library at run time.
std::string soundLibraryVersion();

} // namespace vantoro::pipewire
