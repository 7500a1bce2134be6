#pragma once

#include <QtCore/QObject>

#include "engine/recording_types.h"

namespace vantoro {

/// The levels of the two sources, 0 to 1, for those who show them without knowing the view model,
/// which alone writes them. Main thread.
class AudioLevelStore final : public QObject {
    Q_OBJECT

public:
    /// The one of the program; made on first use, and there until the process ends.
    static AudioLevelStore& shared();

    double systemAudioLevel() const { return systemAudioLevel_; }

    double microphoneLevel() const { return microphoneLevel_; }

    /// What is not greater than 0 is written as 0.
    void setLevel(AudioLevelSource source, double level);

Q_SIGNALS:
    /// Once for each writing, before it: everything is still as it was.
    void levelWillChange(vantoro::AudioLevelSource source);

    /// Once for each writing, after it.
    void levelChanged(vantoro::AudioLevelSource source);

private:
    double systemAudioLevel_ = 0;
    double microphoneLevel_ = 0;
};

/// What is shown of a measured level: at least 0, at most 1.
double shownLevel(float measured);

} // namespace vantoro
