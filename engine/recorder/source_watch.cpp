// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/source_watch.h"

#include <algorithm>
#include <span>

namespace vantoro {

namespace {

bool isDigitalSilence(std::span<const float> samples) {
    return std::ranges::all_of(samples, [](float sample) { return sample == 0; });
}

} // namespace

void SourceWatch::observe(const SampleBuffer& buffer, AudioLevelSource source,
                          const SourceConditionCallback& callback) {
    if (!buffer.format || !(buffer.format->sampleRate > 0)) {
        return;
    }
    Source& watched = at(source);
    watched.silentFrames =
        isDigitalSilence(buffer.samples) ? watched.silentFrames + buffer.frameCount : 0;
    watched.isSilent =
        static_cast<double>(watched.silentFrames) >= silenceLimit * buffer.format->sampleRate;
    report(source, callback);
}

void SourceWatch::setObstacle(AudioLevelSource source, SourceCondition obstacle,
                              const SourceConditionCallback& callback) {
    at(source).obstacle = obstacle;
    report(source, callback);
}

void SourceWatch::report(AudioLevelSource source, const SourceConditionCallback& callback) {
    Source& watched = at(source);
    const bool isFree = watched.obstacle == SourceCondition::delivering;
    const auto condition = isFree && watched.isSilent ? SourceCondition::silent : watched.obstacle;
    if (condition != watched.reported) {
        watched.reported = condition;
        if (callback) {
            callback(source, condition);
        }
    }
}

} // namespace vantoro
