#pragma once

#include <filesystem>

namespace vantoro::bench {

/// Records a temporary movie, with this program's own writer and as fast as it goes: music-like
/// stereo as system audio, speech-like mono as microphone.
void recordTestMovie(const std::filesystem::path& location, int minutes);

} // namespace vantoro::bench
