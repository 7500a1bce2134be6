// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>

#include <QtCore/QObject>

#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// The sources' levels, 0 to 1, and conditions. The view model writes them for displays that do not
/// know it. Main thread.
class AudioLevelStore final : public QObject {
    Q_OBJECT

public:
    /// The program's store; created on first use, never destroyed.
    static AudioLevelStore& shared();

    double systemAudioLevel() const { return systemAudioLevel_; }

    double microphoneLevel() const { return microphoneLevel_; }

    SourceCondition condition(AudioLevelSource source) const {
        return conditions_.at(static_cast<std::size_t>(source));
    }

    /// Stores 0 for a level that is not above 0, NaN included.
    void setLevel(AudioLevelSource source, double level);
    void setCondition(AudioLevelSource source, SourceCondition condition);

Q_SIGNALS:
    /// After each write, even of an equal level.
    void levelChanged(vantoro::AudioLevelSource source);

    /// After a change.
    void conditionChanged(vantoro::AudioLevelSource source);

private:
    double systemAudioLevel_ = 0;
    double microphoneLevel_ = 0;
    std::array<SourceCondition, 2> conditions_{}; // by source
};

/// The level to display for a measured one, clamped to 0...1.
double shownLevel(float measured);

} // namespace vantoro
