#include "control/recording_properties.h"

#include "control/elapsed_time.h"
#include "control/transitions.h"

namespace vantoro {

RecordingProperties::RecordingProperties(std::filesystem::path outputDirectory) {
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
}

void RecordingProperties::setErrorMessage(std::optional<std::string> message) {
    set(Property::errorMessage, &Values::errorMessage, std::move(message));
}

void RecordingProperties::setLastRecordingURL(std::optional<std::filesystem::path> location) {
    set(Property::lastRecordingURL, &Values::lastRecordingURL, std::move(location));
}

void RecordingProperties::setElapsedSeconds(std::int64_t seconds) {
    set(Property::elapsedSeconds, &Values::elapsedSeconds, seconds);
}

} // namespace vantoro
