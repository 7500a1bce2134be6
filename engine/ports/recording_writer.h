// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <vector>

#include "engine/media_time.h"
#include "engine/ports/recording.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// How a track is coded: always as AAC at 48 kHz.
struct TrackFormat {
    int channels = 2;
    int bitRate = 192000; ///< bits a second
};

/// How much of the recording each fragment covers.
struct FragmentIntervals {
    MediaTime first{1, 1};
    MediaTime others{10, 1};
};

/// Told, on a thread that may wait for the disk, that another fragment is on it: how much was
/// recorded by then, in whole fragments, and how many bytes of that still wait to be written.
using FragmentWrittenCallback = std::function<void(MediaTime recorded, std::uint64_t waitingBytes)>;

enum class WriterStatus : std::uint8_t { unknown, writing, completed, failed };

/// One track of a `RecordingWriter`. Called on the capture queue; none of the calls blocks.
class RecordingTrack {
public:
    virtual ~RecordingTrack() = default;
    /// False while too much waits to be written: the giver drops the buffer.
    virtual bool isReady() const = 0;
    /// Copies the samples. False when the writer has failed, be it by an earlier buffer:
    /// its error then says why.
    virtual bool append(const SampleBuffer& buffer) = 0;
    /// Nothing follows.
    virtual void end() = 0;
};

/// Writes tracks into a movie file of fragments, each complete on disk (synced) when it closes, so
/// that a file whose writer died is readable up to its last whole fragment.
///
/// Set up on a task thread, then used on the capture queue alone; `status` and `error` on any
/// thread. The file is there from the beginning, empty and locked. Destroyed without a
/// finish, the writer leaves it as far as it was written.
class RecordingWriter {
public:
    virtual ~RecordingWriter() = default;

    /// Null for a track that cannot be coded. The track's place in the file is the place in the
    /// order of calls. Lives as long as the writer.
    virtual RecordingTrack* addTrack(TrackFormat format) = 0;

    /// All tracks begin at this time; a track whose first buffer is later begins with silence.
    /// False on failure; `error` then says why, if anything is known.
    virtual bool start(MediaTime time) = 0;
    /// Writes and syncs what is left, off the calling thread, then calls `completion` exactly once,
    /// on a thread of the writer's own. `status` has become `completed` or `failed` by then.
    virtual void finish(std::function<void()> completion) = 0;

    /// With which gain each track will probably be mixed, in the order of the tracks: the mix may
    /// be made ahead. May be called again; does not block.
    virtual void expectMix(std::vector<float> volumes) = 0;

    /// What was written, once it is finished. What the mix that was made ahead knows of it is not
    /// read again. Task thread; throws as `MediaToolkit::openRecording`.
    virtual std::unique_ptr<Recording> openRecording() = 0;

    virtual WriterStatus status() const = 0;
    /// Why the writer failed last; null where nothing has.
    virtual std::exception_ptr error() const = 0;
    /// Once it is finished: how much of what was appended is not in the file, at its end. Any
    /// thread. A file can be completed all the same; `error` then says why.
    virtual double secondsNotWritten() const = 0;
};

} // namespace vantoro
