// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/audio_level_store.h"

#include <algorithm>

namespace vantoro {

AudioLevelStore& AudioLevelStore::shared() {
    static auto* const store = new AudioLevelStore; // its users may live as long as the process
    return *store;
}

void AudioLevelStore::setLevel(AudioLevelSource source, double level) {
    (source == AudioLevelSource::systemAudio ? systemAudioLevel_ : microphoneLevel_) =
        level > 0 ? level : 0;
    Q_EMIT levelChanged(source);
}

void AudioLevelStore::setCondition(AudioLevelSource source, SourceCondition condition) {
    auto& kept = conditions_.at(static_cast<std::size_t>(source));
    if (condition != kept) {
        kept = condition;
        Q_EMIT conditionChanged(source);
    }
}

double shownLevel(float measured) {
    return std::clamp<double>(measured, 0, 1);
}

} // namespace vantoro
