#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantoro {

/// Minutes and seconds as 01:15, from an hour on with hours as 01:01:15. Not below 0.
std::string elapsedTimeText(std::int64_t elapsedSeconds);

/// What a terminal shows while recording; a source that is off has no level (0...1).
std::string recordingLine(std::int64_t elapsedSeconds, std::optional<float> systemAudioLevel,
                          std::optional<float> microphoneLevel);

/// What a terminal shows while the final file is made; `fraction` is 0...1.
std::string savingLine(double fraction);

} // namespace vantoro
