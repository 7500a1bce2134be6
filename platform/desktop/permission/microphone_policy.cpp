// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/desktop/permission/microphone_policy.h"

namespace vantoro::desktop {

StoredPermission storedPermission(const std::vector<std::string>& words) {
    if (words.empty()) {
        return StoredPermission::undecided;
    }
    if (words.front() == "yes") {
        return StoredPermission::granted;
    }
    return words.front() == "no" ? StoredPermission::refused : StoredPermission::undecided;
}

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

} // namespace vantoro::desktop
