// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "control/audio_level_store.h"
#include "control/recording_state.h"

#include "l10n/l10n.h"
#include "ui/ports/notifications.h"

namespace vantoro {

// What is worth telling a user who does not see the window, and how.

enum class Outcome : std::uint8_t {
    saved,         ///< as the user wanted
    endedByItself, ///< and was saved
    salvaged,
    failed,
};

/// The outcome that a change of the state shows; nothing if it shows none. `reason` is that of the
/// latest stop.
std::optional<Outcome> outcomeOf(RecordingState::Case before, RecordingState::Case now,
                                 StopReason reason);

/// The keys of the buttons.
constexpr const char* playAction = "play";
constexpr const char* revealAction = "reveal";

/// `message` is the window's, may be empty, and is all there is to say about a failure.
Notification outcomeNotification(Outcome outcome,
                                 const std::optional<std::filesystem::path>& recording,
                                 const std::string& message, const L10n& texts);

Notification troubleNotification(AudioLevelSource source, SourceCondition condition,
                                 const L10n& texts);

/// Decides when a source's condition is worth telling, once for each time. Begins anew with each
/// recording.
class TroubleWatch {
public:
    static constexpr std::int64_t patience = 10; ///< seconds

    /// Call every second and on each change of the condition. `elapsedSeconds` of the recording.
    bool isToBeTold(SourceCondition condition, std::int64_t elapsedSeconds);

private:
    SourceCondition condition_ = SourceCondition::delivering;
    std::int64_t since_ = 0;
    bool isTold_ = false;
    bool toldSilence_ = false; // once is enough: sound pauses often
};

} // namespace vantoro
