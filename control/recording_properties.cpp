// SPDX-License-Identifier: GPL-3.0-or-later

#include "control/recording_properties.h"

#include "control/elapsed_time.h"
#include "control/transitions.h"

namespace vantoro {

RecordingProperties::RecordingProperties(std::filesystem::path outputDirectory,
                                         AudioLevelStore& levels)
    : levels_(levels) {
    values_.outputDirectory = std::move(outputDirectory);
}

void RecordingProperties::setCaptureSystemAudio(bool on) {
    set(Property::captureSystemAudio, &Values::captureSystemAudio, on);
}

void RecordingProperties::setCaptureMicrophone(bool on) {
    set(Property::captureMicrophone, &Values::captureMicrophone, on);
}

void RecordingProperties::setSelectedMicrophoneID(std::optional<std::string> id) {
    set(Property::selectedMicrophoneID, &Values::selectedMicrophoneID, std::move(id));
}

void RecordingProperties::setSystemVolume(double gain) {
    set(Property::systemVolume, &Values::systemVolume, gain);
}

void RecordingProperties::setMicrophoneVolume(double gain) {
    set(Property::microphoneVolume, &Values::microphoneVolume, gain);
}

bool RecordingProperties::isProcessing() const {
    return vantoro::isProcessing(values_.state.which());
}

bool RecordingProperties::canStart() const {
    return vantoro::canStart(values_.state.which(), values_.captureSystemAudio,
                             values_.captureMicrophone);
}

std::string RecordingProperties::formattedElapsedTime() const {
    return vantoro::formattedElapsedTime(values_.elapsedSeconds);
}

void RecordingProperties::setState(RecordingState state) {
    set(Property::state, &Values::state, std::move(state));
    Q_EMIT stateChanged();
}

void RecordingProperties::setErrorMessage(std::optional<std::string> message) {
    set(Property::errorMessage, &Values::errorMessage, std::move(message));
}

void RecordingProperties::setLevel(AudioLevelSource source, double level) {
    if (source == AudioLevelSource::systemAudio) {
        set(Property::systemAudioLevel, &Values::systemAudioLevel, level);
    } else {
        set(Property::microphoneLevel, &Values::microphoneLevel, level);
    }
    levels_.setLevel(source, level);
}

void RecordingProperties::resetLevels() {
    setLevel(AudioLevelSource::systemAudio, 0);
    setLevel(AudioLevelSource::microphone, 0);
}

void RecordingProperties::setProgress(std::optional<WorkProgress> progress) {
    if (values_.progress != progress) {
        set(Property::progress, &Values::progress, progress);
    }
}

void RecordingProperties::setCondition(AudioLevelSource source, SourceCondition condition) {
    const bool isSystemAudio = source == AudioLevelSource::systemAudio;
    const auto field = isSystemAudio ? &Values::systemAudioCondition : &Values::microphoneCondition;
    if (values_.*field != condition) {
        set(isSystemAudio ? Property::systemAudioCondition : Property::microphoneCondition, field,
            condition);
    }
    levels_.setCondition(source, condition);
}

void RecordingProperties::resetConditions() {
    setCondition(AudioLevelSource::systemAudio, SourceCondition::delivering);
    setCondition(AudioLevelSource::microphone, SourceCondition::delivering);
}

} // namespace vantoro
