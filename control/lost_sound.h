// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <map>
#include <optional>
#include <string>

#include "engine/recording_types.h"
#include "l10n/l10n.h"

namespace vantoro {

/// The sound that one recording has lost so far.
class LostSound {
public:
    void add(const SoundLoss& loss);

    bool isAny() const noexcept { return !notTakenInTime_.empty() || notWritten_.has_value(); }

    /// A message for the user, one sentence per cause; empty if nothing was lost.
    std::string text(const L10n& texts) const;

private:
    std::map<std::optional<AudioLevelSource>, SoundLoss::Duration> notTakenInTime_;
    std::optional<SoundLoss> notWritten_;
};

} // namespace vantoro
