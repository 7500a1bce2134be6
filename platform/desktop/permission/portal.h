// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace vantoro::desktop {

/// A sandbox's stored permission for the microphone.
enum class StoredPermission : std::uint8_t { undecided, granted, refused };

/// From the permission store's entry for one application: "yes", "no", or "ask" or nothing for
/// undecided.
StoredPermission storedPermission(const std::vector<std::string>& words);

// What the portal says about the microphone, on the session bus at the given address. No answer
// within `limit` counts as no restriction and no decision. Any thread.

constexpr std::chrono::milliseconds answerLimit{500};

/// Asks the portal's running backends; starts none.
bool microphoneDisabledByPortal(const std::string& sessionBus,
                                std::chrono::milliseconds limit = answerLimit);

/// For sandboxed programs.
StoredPermission storedMicrophonePermission(const std::string& sessionBus,
                                            const std::string& applicationID,
                                            std::chrono::milliseconds limit = answerLimit);

} // namespace vantoro::desktop
