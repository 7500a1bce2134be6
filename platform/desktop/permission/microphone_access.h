// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>

#include "engine/ports/permissions.h"
#include "platform/desktop/bus/bus_addresses.h"
#include "platform/desktop/permission/portal.h"

namespace vantoro::desktop {

/// Where a sandbox describes itself to the programs in it.
constexpr const char* standardSandboxDescription = "/.flatpak-info";

/// All that decides whether a microphone may be recorded, as it is now, but for whether it is
/// hidden. Any thread; takes two limits at most.
MicrophoneFacts
microphoneFacts(const std::string& sessionBus,
                const std::filesystem::path& sandboxDescription = standardSandboxDescription,
                std::chrono::milliseconds limit = answerLimit);

/// What the desktop says about recording a microphone, read anew at each call. Any thread; takes
/// two limits at most, about a second, when the desktop's services do not answer, beside what the
/// two functions given to it take.
class DesktopMicrophoneAccess final : public MicrophoneAccess {
public:
    /// `openMicrophone` records for a moment, which is how a sandbox is made to ask its user: true
    /// when it could. `chosenSourceIsHidden`: whether a microphone was chosen that the sound
    /// server does not let us see. Either may be called on any thread.
    DesktopMicrophoneAccess(std::function<bool()> openMicrophone,
                            std::function<bool()> chosenSourceIsHidden,
                            std::string sessionBus = standardBusAddresses().session,
                            std::filesystem::path sandboxDescription = standardSandboxDescription,
                            std::chrono::milliseconds limit = answerLimit);

    AuthorizationStatus status() override;
    bool request() override;

private:
    std::function<bool()> openMicrophone_;
    std::function<bool()> chosenSourceIsHidden_;
    std::string sessionBus_;
    std::filesystem::path sandboxDescription_;
    std::chrono::milliseconds limit_;
};

} // namespace vantoro::desktop
