// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <optional>
#include <string>

#include "engine/recording_types.h"
#include "l10n/l10n.h"

namespace vantoro {

/// What one recording has lost so far.
class LostSound {
public:
    void add(const SoundLoss& loss);

    void add(const TracksNotKept& failure) { tracksNotKept_ = failure; }

    /// Whether sound is missing.
    bool isAny() const noexcept { return !notTakenInTime_.empty() || notWritten_.has_value(); }

    bool lacksTracks() const noexcept { return tracksNotKept_.has_value(); }

    /// A message about sound for the user, one sentence per cause; empty if nothing was lost.
    std::string text(const L10n& texts) const;

    /// The same about the sources' own files.
    std::string textOnTracks(const L10n& texts) const {
        return tracksNotKept_ ? texts.tracksNotKept(*tracksNotKept_) : std::string();
    }

private:
    std::map<std::optional<AudioLevelSource>, SoundLoss::Duration> notTakenInTime_;
    std::optional<SoundLoss> notWritten_;
    std::optional<TracksNotKept> tracksNotKept_;
};

} // namespace vantoro
