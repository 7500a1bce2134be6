// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "engine/ports/media_toolkit.h"

namespace vantoro::bench {

enum class TestSources : std::uint8_t { both, microphone };

/// A temporary movie, recorded with this program's writer at full speed: music-like stereo as
/// system audio, speech-like mono as microphone. Throws if it cannot be written.
class TestMovie {
public:
    TestMovie(MediaToolkit& toolkit, const std::filesystem::path& location,
              TestSources sources = TestSources::both);

    RecordingWriter& writer() { return *writer_; }

    void record(int minutes);
    /// Returns when the file is complete.
    void finish();

private:
    std::unique_ptr<RecordingWriter> writer_;
    RecordingTrack* system_;
    RecordingTrack* microphone_;
};

/// All of it.
void recordTestMovie(const std::filesystem::path& location, int minutes,
                     TestSources sources = TestSources::both);

} // namespace vantoro::bench
