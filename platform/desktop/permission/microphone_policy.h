// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "engine/ports/permissions.h"

namespace vantoro::desktop {

/// What a sandbox's permission store knows of our use of the microphone.
enum class StoredPermission : std::uint8_t { undecided, granted, refused };

/// The store's words for one application: "yes", "no", or "ask" and none for undecided.
StoredPermission storedPermission(const std::vector<std::string>& words);

/// All that decides whether a microphone may be recorded.
struct MicrophoneFacts {
    bool disabledBySettings = false; ///< the desktop's privacy settings
    bool disabledByPortal = false;   ///< the desktop portal's lockdown
    bool sandboxed = false;
    StoredPermission stored = StoredPermission::undecided; ///< counts in a sandbox only
    bool chosenSourceHidden = false; ///< the sound server keeps the chosen microphone from us
};

/// No desktop enforces its settings on programs outside a sandbox: we heed them of our own will.
AuthorizationStatus microphoneAuthorization(const MicrophoneFacts& facts);

} // namespace vantoro::desktop
