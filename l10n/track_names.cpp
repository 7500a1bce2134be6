// SPDX-License-Identifier: GPL-3.0-or-later

#include "l10n/track_names.h"

#include "l10n/l10n.h"
#include "l10n/texts/bilingual_text.h"

namespace vantoro {

std::optional<TrackNames> trackNames(const Preferences& preferences) {
    constexpr BilingualText systemAudio{"system audio", "系统声音"};
    constexpr BilingualText microphone{"microphone", "麦克风"};
    if (preferences.get(Preference::keepTracks) != "true") {
        return std::nullopt;
    }
    const auto language = L10n(preferences).language();
    return TrackNames{.systemAudio = systemAudio.in(language),
                      .microphone = microphone.in(language)};
}

} // namespace vantoro
