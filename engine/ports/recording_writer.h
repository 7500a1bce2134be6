// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/media_time.h"
#include "engine/ports/recording.h"
#include "engine/ports/recording_tags.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// Encoding of a track: always AAC at 48 kHz.
struct TrackFormat {
    int channels = 2;
    int bitRate = 192000; ///< bits per second
};

/// Duration of each fragment.
struct FragmentIntervals {
    MediaTime first{1, 1};
    MediaTime others{10, 1};
};

/// Reports that another fragment is on disk: the duration of all whole fragments, and the bytes
/// still waiting to be written. Called on a thread that may block on the disk.
using FragmentWrittenCallback = std::function<void(MediaTime recorded, std::uint64_t waitingBytes)>;

enum class WriterStatus : std::uint8_t { unknown, writing, completed, failed };

/// One track of a `RecordingWriter`. Capture queue; no call blocks.
class RecordingTrack {
public:
    virtual ~RecordingTrack() = default;
    /// False while too much data waits to be written; the caller then drops the buffer.
    virtual bool isReady() const = 0;
    /// Copies the samples. False if the writer has failed on this or an earlier buffer;
    /// `errorDescription` says why.
    virtual bool append(const SampleBuffer& buffer) = 0;
    /// No buffer follows.
    virtual void end() = 0;
};

/// Writes tracks into a fragmented movie file, readable up to its last whole fragment at any time.
///
/// Set up on a task thread, then used on the capture queue only; `status` and `error` on any
/// thread. The file exists from the start, empty and locked, and stays without `finish`, too.
class RecordingWriter {
public:
    virtual ~RecordingWriter() = default;

    /// Null if the track cannot be encoded. Tracks appear in the file in call order. The track
    /// lives as long as the writer.
    virtual RecordingTrack* addTrack(TrackFormat format) = 0;

    /// What the file tells about the recording. Before the first buffer.
    virtual void setTags(RecordingTags tags) = 0;

    /// All tracks start at this time; silence fills a track whose first buffer is later. False on
    /// failure; `error` says why, if known.
    virtual bool start(MediaTime time) = 0;
    /// Marks a time, in the same clock as the buffers' times; on disk with the next fragment. Does
    /// not block.
    virtual void addMark(MediaTime time, std::string text) = 0;
    /// Writes and syncs the rest in the background, then calls `completion` exactly once, on a
    /// thread of the writer. By then `status` is `completed` or `failed`.
    virtual void finish(std::function<void()> completion) = 0;

    /// The probable gain of each track, so that the mix can be made ahead. Does not block.
    virtual void expectMix(std::vector<float> volumes) = 0;

    /// Opens the finished file, reusing what the mix made ahead knows of it. Task thread; throws
    /// like `MediaToolkit::openRecording`.
    virtual std::unique_ptr<Recording> openRecording() = 0;

    virtual WriterStatus status() const = 0;
    /// The last failure; null if there was none.
    virtual std::exception_ptr error() const = 0;
    /// After `finish`: seconds at the end that were appended but are not in the file. Any thread.
    /// The file may still be `completed`; `error` then says why sound is missing.
    virtual double secondsNotWritten() const = 0;
};

} // namespace vantoro
