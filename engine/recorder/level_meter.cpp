// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recorder/level_meter.h"

#include "engine/audio_level.h"

namespace vantoro {

namespace {

constexpr double publishInterval = 1.0 / 15; // seconds

} // namespace

void LevelMeter::publishAudioLevel(const SampleBuffer& buffer, AudioLevelSource source,
                                   const AudioLevelCallback& callback) {
    double& last = lastLevelPublishTime_.at(static_cast<std::size_t>(source));
    const double now = clock_.systemUptime();
    if (now - last < publishInterval) {
        return;
    }
    last = now;
    if (callback) {
        callback(source, audioLevel(buffer));
    }
}

} // namespace vantoro
