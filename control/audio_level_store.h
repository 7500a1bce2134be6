// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

#include <QtCore/QObject>

#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// The levels of the two sources, 0 to 1, and their conditions, for those who show them without
/// knowing the view model, which alone writes them. Main thread.
class AudioLevelStore final : public QObject {
    Q_OBJECT

public:
    /// The one of the program; made on first use, and there until the process ends.
    static AudioLevelStore& shared();

    double systemAudioLevel() const { return systemAudioLevel_; }

    double microphoneLevel() const { return microphoneLevel_; }

    SourceCondition condition(AudioLevelSource source) const {
        return conditions_.at(static_cast<std::size_t>(source));
    }

    /// What is not greater than 0 is written as 0.
    void setLevel(AudioLevelSource source, double level);
    void setCondition(AudioLevelSource source, SourceCondition condition);

Q_SIGNALS:
    /// After each write, even of an equal level.
    void levelChanged(vantoro::AudioLevelSource source);

    /// After a condition has become another.
    void conditionChanged(vantoro::AudioLevelSource source);

private:
    double systemAudioLevel_ = 0;
    double microphoneLevel_ = 0;
    std::array<SourceCondition, 2> conditions_{}; // by source
};

/// What is shown of a measured level: at least 0, at most 1.
double shownLevel(float measured);

} // namespace vantoro
