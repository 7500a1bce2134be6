// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QtCore/QObject>

#include "control/audio_level_store.h"
#include "control/recording_state.h"
#include "control/work_progress.h"
#include "engine/ports/permissions.h"
#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// What the interface shows of recording, and the settings of the next one. Main thread.
class RecordingProperties : public QObject {
    Q_OBJECT

public:
    enum class Property : std::uint8_t {
        state,
        captureSystemAudio,
        captureMicrophone,
        selectedMicrophoneID,
        microphones,
        systemVolume,
        microphoneVolume,
        systemAudioLevel,
        microphoneLevel,
        systemAudioCondition,
        microphoneCondition,
        elapsedSeconds,
        progress,
        outputDirectory,
        lastRecordingURL,
        errorMessage,
        hasScreenPermission,
        microphonePermission,
    };

    struct Values {
        RecordingState state;
        bool captureSystemAudio = true;
        bool captureMicrophone = true;
        std::optional<std::string> selectedMicrophoneID;
        std::vector<AudioInputDevice> microphones;
        bool isSurveyed = false;       ///< whether microphones and permissions are known
        double systemVolume = 0.9;     ///< linear gain
        double microphoneVolume = 1.0; ///< linear gain
        double systemAudioLevel = 0;   ///< 0 to 1
        double microphoneLevel = 0;    ///< 0 to 1
        SourceCondition systemAudioCondition = SourceCondition::delivering;
        SourceCondition microphoneCondition = SourceCondition::delivering;
        std::int64_t elapsedSeconds = 0;
        /// Of saving or a salvage, if it takes long.
        std::optional<WorkProgress> progress;
        std::filesystem::path outputDirectory;
        std::string title; ///< of the next file; empty: its name without the extension
        std::optional<std::filesystem::path> lastRecordingURL;
        /// For the user: an error, a recording saved automatically, or low disk space.
        std::optional<std::string> errorMessage;
        bool hasScreenPermission = false;
        AuthorizationStatus microphonePermission = AuthorizationStatus::notDetermined;
    };

    const Values& values() const { return values_; }

    void setCaptureSystemAudio(bool on);
    void setCaptureMicrophone(bool on);
    void setSelectedMicrophoneID(std::optional<std::string> id);
    void setSystemVolume(double gain);
    void setMicrophoneVolume(double gain);

    /// Not shown, so no listener hears of it.
    void setTitle(std::string title) { values_.title = std::move(title); }

    void dismissMessage() { setErrorMessage(std::nullopt); }

    bool isProcessing() const;
    bool canStart() const;
    std::string formattedElapsedTime() const;

Q_SIGNALS:
    /// After each write, even of an equal value.
    void propertyChanged(vantoro::RecordingProperties::Property property);

    /// After each write of the state. Spares listeners the level updates, many per second.
    void stateChanged();

protected:
    /// Also publishes levels and conditions to `levels`, which must outlive this.
    RecordingProperties(std::filesystem::path outputDirectory, AudioLevelStore& levels);

    template <class Value>
    void set(Property property, Value Values::* field, std::type_identity_t<Value> value) {
        values_.*field = std::move(value);
        Q_EMIT propertyChanged(property);
    }

    /// The properties that follow announce it.
    void setSurveyed() { values_.isSurveyed = true; }

    void setState(RecordingState state);
    void setErrorMessage(std::optional<std::string> message);
    void setLevel(AudioLevelSource source, double level);
    void resetLevels();
    void resetConditions();
    /// These two notify only on a change.
    void setCondition(AudioLevelSource source, SourceCondition condition);
    void setProgress(std::optional<WorkProgress> progress);

private:
    AudioLevelStore& levels_;
    Values values_;
};

} // namespace vantoro
