// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/media/support/movie_recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <utility>

#include "tests/support/memory_file_system.h"

namespace vantoro::testing {

MovieRecording::MovieRecording(FileSystem& fileSystem, std::filesystem::path location,
                               std::vector<TrackFormat> tracks, FragmentIntervals intervals,
                               IsPowerSaved isPowerSaved)
    : location_(std::move(location)),
      tracks_(std::move(tracks)),
      writer_(ffmpeg::FfmpegToolkit(fileSystem, std::move(isPowerSaved))
                  .makeWriter(location_, intervals, {})) {
    writer_->setTags(movieTags);
    for (const TrackFormat& track : tracks_) {
        written_.push_back(writer_->addTrack(track));
        EXPECT_NE(written_.back(), nullptr);
    }
    writer_->start(SoundBuffer::sessionStart);
}

bool MovieRecording::append(std::size_t track, std::int64_t from, std::int64_t to,
                            const Sound& sound) {
    for (std::int64_t frame = from; frame < to; frame += bufferFrames) {
        if (!appendBuffer(track, frame, std::min(bufferFrames, to - frame), sound)) {
            return false;
        }
    }
    return true;
}

bool MovieRecording::appendAll(std::int64_t from, std::int64_t to, const Sound& sound) {
    for (std::int64_t frame = from; frame < to; frame += bufferFrames) {
        for (std::size_t track = 0; track < tracks_.size(); ++track) {
            if (!appendBuffer(track, frame, std::min(bufferFrames, to - frame), sound)) {
                return false;
            }
        }
    }
    return true;
}

void MovieRecording::finish() {
    for (RecordingTrack* const track : written_) {
        track->end();
    }
    std::promise<void> finished;
    auto done = finished.get_future();
    writer_->finish([&finished] { finished.set_value(); });
    ASSERT_EQ(done.wait_for(std::chrono::seconds(30)), std::future_status::ready);
}

bool MovieRecording::appendBuffer(std::size_t track, std::int64_t from, std::int64_t frames,
                                  const Sound& sound) {
    const SoundBuffer buffer(from, frames, tracks_[track].channels, sound);
    return written_[track]->append(buffer.buffer());
}

SoundBuffer::SoundBuffer(std::int64_t start, std::int64_t frames, int channels, const Sound& sound)
    : start_(start), frames_(frames), channels_(channels) {
    for (int channel = 0; channel < channels; ++channel) {
        for (std::int64_t frame = start; frame < start + frames; ++frame) {
            samples_.push_back(sound(frame));
        }
    }
}

SampleBuffer SoundBuffer::buffer() const {
    const std::int64_t nanoseconds = start_ * 1'000'000'000 / 48000;
    return {.dataIsReady = true,
            .frameCount = frames_,
            .presentationTime = {sessionStart.value + nanoseconds, sessionStart.timescale},
            .format =
                AudioStreamDescription{.sampleRate = 48000,
                                       .channelsPerFrame = static_cast<std::uint32_t>(channels_)},
            .samples = samples_};
}

std::vector<std::byte> recordMovie(std::int64_t frames, const Sound& sound,
                                   std::vector<TrackFormat> tracks) {
    MemoryFileSystem files;
    MovieRecording recording(files, "movie.mov", std::move(tracks));
    EXPECT_TRUE(recording.appendAll(0, frames, sound));
    recording.finish();
    EXPECT_EQ(recording.writer().status(), WriterStatus::completed);
    return files.contentOf("movie.mov");
}

std::vector<TopBox> topBoxes(const std::vector<std::byte>& movie) {
    std::vector<TopBox> boxes;
    for (std::size_t offset = 0; offset + 8 <= movie.size();) {
        std::size_t size = 0;
        std::string type;
        for (std::size_t i = 0; i < 4; ++i) {
            size = size << 8U | std::to_integer<std::size_t>(movie[offset + i]);
            type += static_cast<char>(movie[offset + 4 + i]);
        }
        EXPECT_GE(size, 8U);
        EXPECT_LE(size, movie.size() - offset);
        boxes.push_back({type, offset, offset + size});
        offset += std::max<std::size_t>(size, 8);
    }
    return boxes;
}

} // namespace vantoro::testing
