// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <string>

#include "platform/desktop/permission/microphone_policy.h"

namespace vantoro::desktop {

/// What the desktop's portal services say about the microphone, on the session's bus, whose address
/// this is. Each question takes `limit` at most, the connecting and all its calls together; no
/// answer counts as none given. Any thread.
constexpr std::chrono::milliseconds answerLimit{500};

/// Asks the portal's desktop backends that are running, and starts none.
bool microphoneDisabledByPortal(const std::string& sessionBus,
                                std::chrono::milliseconds limit = answerLimit);

/// For programs in a sandbox.
StoredPermission storedMicrophonePermission(const std::string& sessionBus,
                                            const std::string& applicationID,
                                            std::chrono::milliseconds limit = answerLimit);

} // namespace vantoro::desktop
