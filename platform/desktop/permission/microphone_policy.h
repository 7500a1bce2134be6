// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/ports/permissions.h"

namespace vantoro::desktop {

/// A sandbox's stored permission for the microphone.
enum class StoredPermission : std::uint8_t { undecided, granted, refused };

/// From the permission store's entry for one application: "yes", "no", or "ask" or nothing for
/// undecided.
StoredPermission storedPermission(const std::vector<std::string>& words);

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

} // namespace vantoro::desktop
