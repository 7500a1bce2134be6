// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/microphone_access.h"

#include <utility>

#include "platform/desktop/gio/privacy_settings.h"
#include "platform/desktop/permission/sandbox.h"

namespace vantoro::desktop {

AuthorizationStatus microphoneAuthorization(const MicrophoneFacts& facts) {
    if (facts.disabledBySettings || facts.disabledByPortal) {
        return AuthorizationStatus::restricted;
    }
    if (facts.sandboxed && facts.stored == StoredPermission::refused) {
        return AuthorizationStatus::denied;
    }
    // A sandbox may hide all microphones until the user decides, so ask first.
    if (facts.sandboxed && facts.stored == StoredPermission::undecided) {
        return AuthorizationStatus::notDetermined;
    }
    return facts.chosenSourceHidden ? AuthorizationStatus::denied : AuthorizationStatus::authorized;
}

MicrophoneFacts microphoneFacts(const std::string& sessionBus,
                                const std::filesystem::path& sandboxDescription,
                                std::chrono::milliseconds limit) {
    MicrophoneFacts facts;
    facts.disabledBySettings = microphoneDisabledBySettings();
    facts.disabledByPortal = microphoneDisabledByPortal(sessionBus, limit);
    if (const auto applicationID = sandboxedApplicationID(sandboxDescription)) {
        facts.sandboxed = true;
        facts.stored = storedMicrophonePermission(sessionBus, *applicationID, limit);
    }
    return facts;
}

DesktopMicrophoneAccess::DesktopMicrophoneAccess(std::function<bool()> openMicrophone,
                                                 std::function<bool()> chosenSourceIsHidden,
                                                 std::string sessionBus,
                                                 std::filesystem::path sandboxDescription,
                                                 std::chrono::milliseconds limit)
    : openMicrophone_(std::move(openMicrophone)),
      chosenSourceIsHidden_(std::move(chosenSourceIsHidden)),
      sessionBus_(std::move(sessionBus)),
      sandboxDescription_(std::move(sandboxDescription)),
      limit_(limit) {}

AuthorizationStatus DesktopMicrophoneAccess::status() {
    auto facts = microphoneFacts(sessionBus_, sandboxDescription_, limit_);
    facts.chosenSourceHidden = chosenSourceIsHidden_();
    return microphoneAuthorization(facts);
}

bool DesktopMicrophoneAccess::request() {
    const bool opened = openMicrophone_();
    const auto afterwards = status();
    // The store may hold no entry afterwards; then the attempt's success decides.
    return afterwards == AuthorizationStatus::notDetermined
               ? opened
               : afterwards == AuthorizationStatus::authorized;
}

} // namespace vantoro::desktop
