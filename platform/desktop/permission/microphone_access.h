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

/// Everything that decides whether the microphone may be recorded.
struct MicrophoneFacts {
    bool disabledBySettings = false; ///< the desktop's privacy settings
    bool disabledByPortal = false;   ///< the desktop portal's lockdown
    bool sandboxed = false;
    StoredPermission stored = StoredPermission::undecided; ///< used only in a sandbox
    bool chosenSourceHidden = false; ///< the sound server hides the chosen microphone
};

/// Outside a sandbox no desktop enforces its settings; this program obeys them anyway.
AuthorizationStatus microphoneAuthorization(const MicrophoneFacts& facts);

/// Where a sandbox describes itself to the programs inside.
constexpr const char* standardSandboxDescription = "/.flatpak-info";

/// The current facts, except `chosenSourceHidden`. Any thread; blocks for at most twice the limit.
MicrophoneFacts
microphoneFacts(const std::string& sessionBus,
                const std::filesystem::path& sandboxDescription = standardSandboxDescription,
                std::chrono::milliseconds limit = answerLimit);

/// The desktop's decision about the microphone, read anew at each call. Any thread; blocks for at
/// most twice the limit, plus the time of the two given functions.
class DesktopMicrophoneAccess final : public MicrophoneAccess {
public:
    /// `openMicrophone` records for a moment, which makes a sandbox prompt its user; true if that
    /// worked. `chosenSourceIsHidden`: whether the sound server hides the chosen microphone. Either
    /// may be called on any thread.
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
