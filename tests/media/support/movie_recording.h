// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/ports/file_system.h"
#include "engine/ports/recording_writer.h"
#include "platform/ffmpeg/toolkit.h"
#include "tests/media/support/test_sounds.h"

namespace vantoro::testing {

inline constexpr TrackFormat systemTrack{.channels = 2, .bitRate = 192000};
inline constexpr TrackFormat microphoneTrack{.channels = 1, .bitRate = 96000};

/// The tags of a `MovieRecording`.
inline const RecordingTags movieTags{
    .start = WallTime{.seconds = 1'740'792'615, .utcOffset = 8 * 3600}, .title = "A recording"};

/// Drives a writer as the recorder does: tracks, start, then buffers at their times.
class MovieRecording {
public:
    static constexpr std::int64_t bufferFrames = 960;

    /// With the recorder's own fragments, or others.
    MovieRecording(FileSystem& fileSystem, std::filesystem::path location,
                   std::vector<TrackFormat> tracks = {systemTrack, microphoneTrack},
                   FragmentIntervals intervals = {}, IsPowerSaved isPowerSaved = {});

    /// Appends the track's sound from one frame to another, in buffers; false when one was refused.
    bool append(std::size_t track, std::int64_t from, std::int64_t to, const Sound& sound);
    /// The same for all tracks, side by side.
    bool appendAll(std::int64_t from, std::int64_t to, const Sound& sound);
    /// Ends all tracks and waits until the file is finished. Fails the test after half a minute.
    void finish();

    RecordingWriter& writer() { return *writer_; }

    RecordingTrack& track(std::size_t index) { return *written_[index]; }

    const std::filesystem::path& location() const { return location_; }

private:
    bool appendBuffer(std::size_t track, std::int64_t from, std::int64_t frames,
                      const Sound& sound);

    std::filesystem::path location_;
    std::vector<TrackFormat> tracks_;
    std::unique_ptr<RecordingWriter> writer_;
    std::vector<RecordingTrack*> written_;
};

/// A buffer of float sound, with what it borrows.
class SoundBuffer {
public:
    SoundBuffer(std::int64_t start, std::int64_t frames, int channels, const Sound& sound);

    /// Timed as a session that began at `sessionStart` times it: in nanoseconds.
    SampleBuffer buffer() const;

    static constexpr MediaTime sessionStart{987'654'321'012, 1'000'000'000};

private:
    std::int64_t start_;
    std::int64_t frames_;
    int channels_;
    std::vector<float> samples_;
};

/// Records the same sound into both tracks and returns the file's bytes.
std::vector<std::byte> recordMovie(std::int64_t frames, const Sound& sound,
                                   std::vector<TrackFormat> tracks = {systemTrack,
                                                                      microphoneTrack});

/// A box at the top of a movie.
struct TopBox {
    std::string type;
    std::size_t offset = 0;
    std::size_t end = 0;
};

std::vector<TopBox> topBoxes(const std::vector<std::byte>& movie);

} // namespace vantoro::testing
