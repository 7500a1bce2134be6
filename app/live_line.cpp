#include "app/live_line.h"

#include <algorithm>
#include <cmath>

namespace vantoro {

namespace {

std::string twoDigits(std::int64_t value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

std::string meter(const char* name, std::optional<float> level) {
    if (!level) {
        return {};
    }
    constexpr int width = 20;
    const int filled =
        std::clamp(static_cast<int>(std::lround(*level * static_cast<float>(width))), 0, width);
    return std::string("  ") + name + " [" + std::string(static_cast<std::size_t>(filled), '#') +
           std::string(static_cast<std::size_t>(width - filled), '-') + "]";
}

} // namespace

std::string elapsedTimeText(std::int64_t elapsedSeconds) {
    const auto hours = elapsedSeconds / 3600;
    const auto minutes = elapsedSeconds % 3600 / 60;
    const auto text = twoDigits(minutes) + ":" + twoDigits(elapsedSeconds % 60);
    return hours > 0 ? twoDigits(hours) + ":" + text : text;
}

std::string recordingLine(std::int64_t elapsedSeconds, std::optional<float> systemAudioLevel,
                          std::optional<float> microphoneLevel) {
    return elapsedTimeText(elapsedSeconds) + meter("system", systemAudioLevel) +
           meter("microphone", microphoneLevel);
}

std::string savingLine(double fraction) {
    return "Saving " + std::to_string(std::clamp(std::lround(fraction * 100), 0L, 100L)) + " %";
}

} // namespace vantoro
