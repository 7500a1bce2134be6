// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/recording_types.h"

#include <array>
#include <utility>

#include "engine/failure.h"

namespace vantoro {

namespace {

constexpr std::array caseNames{
    "writerFailed",
    "noAudioSource",
    "screenPermissionDenied",
    "microphonePermissionDenied",
    "noDisplayAvailable",
    "writerSetupFailed",
    "noAudioCaptured",
    "exportFailed",
    "diskTooFull",
};

} // namespace

RecordingError::RecordingError(Case which) : RecordingError(which, {}) {}

RecordingError::RecordingError(Case which, std::string message)
    : which_(which),
      message_(std::move(message)),
      what_(caseNames.at(static_cast<std::size_t>(which))) {
    if (!message_.empty()) {
        what_ += ": " + message_;
    }
}

RecordingError RecordingError::writerFailed(std::string message) {
    return {Case::writerFailed, std::move(message)};
}

RecordingError RecordingError::writerFailed(std::exception_ptr cause) {
    auto error = writerFailed(whatOf(cause));
    error.cause_ = std::move(cause);
    return error;
}

const char* RecordingError::what() const noexcept {
    return what_.c_str();
}

} // namespace vantoro

std::size_t std::hash<vantoro::AudioInputDevice>::operator()(
    const vantoro::AudioInputDevice& device) const noexcept {
    constexpr std::size_t mixer = 0x9e3779b97f4a7c15;
    const std::size_t id = std::hash<std::string>{}(device.id);
    return (id ^ (id >> 29)) * mixer + std::hash<std::string>{}(device.name);
}
