#pragma once

#include <cstdint>
#include <filesystem>

namespace vantoro::bench {

enum class TestSources : std::uint8_t { both, microphone };

/// Records a temporary movie, with this program's own writer and as fast as it goes: music-like
/// stereo as system audio, speech-like mono as microphone.
void recordTestMovie(const std::filesystem::path& location, int minutes,
                     TestSources sources = TestSources::both);

} // namespace vantoro::bench
