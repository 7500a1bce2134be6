// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/media_time.h"
#include "engine/sample_buffer.h"

namespace vantoro {

/// The four output settings of one audio track: always MPEG-4 AAC.
struct AudioTrackSettings {
    int sampleRate = 48000; ///< Hz
    int channels = 2;
    int bitRate = 192000; ///< bits a second
    /// Data arrives live: it must not be held back, nor may its giver be made to wait.
    bool expectsMediaDataInRealTime = true;
};

/// One track of a `FileWriter`. Called on the capture queue; none of the calls blocks.
class FileWriterInput {
public:
    virtual ~FileWriterInput() = default;
    /// False while too much waits to be written: the giver drops the buffer.
    virtual bool isReadyForMoreMediaData() const = 0;
    /// Copies the samples. False when the writer has failed, be it by an earlier buffer:
    /// its error then says why.
    virtual bool append(const SampleBuffer& buffer) = 0;
    virtual void markAsFinished() = 0;
};

/// Told, on a thread that may wait for the disk, that another fragment is on it: how much was
/// recorded by then, in whole fragments, and how many bytes of that still wait to be written.
using FragmentWrittenCallback = std::function<void(MediaTime recorded, std::uint64_t waitingBytes)>;

enum class FileWriterStatus : std::uint8_t { unknown, writing, completed, failed };

/// Writes tracks into a movie file of fragments, each complete on disk (synced) when it closes, so
/// that a file whose writer died is readable up to its last whole fragment.
///
/// Set up on a task thread, then used on the capture queue alone; `status` and `errorDescription`
/// on any thread. The file is there from the beginning, empty and locked. Destroyed without a
/// finish, the writer leaves it as far as it was written.
class FileWriter {
public:
    virtual ~FileWriter() = default;
    /// Media time covered by each fragment after the first.
    virtual void setMovieFragmentInterval(MediaTime interval) = 0;
    /// Media time covered by the first fragment.
    virtual void setInitialMovieFragmentInterval(MediaTime interval) = 0;
    /// Before `startWriting`. Called until the writer is destroyed.
    virtual void setOnFragmentWritten(FragmentWrittenCallback callback) = 0;

    virtual bool canAdd(const AudioTrackSettings& settings) const = 0;
    /// The track's place in the file is the place in the order of calls. Lives as long as the
    /// writer.
    virtual FileWriterInput& add(const AudioTrackSettings& settings) = 0;

    /// False on failure; `errorDescription` then says why, if anything is known.
    virtual bool startWriting() = 0;
    /// All tracks begin at this time; a track whose first buffer is later begins with silence.
    virtual void startSession(MediaTime sourceTime) = 0;
    /// Writes and syncs what is left, off the calling thread, then calls `completion` exactly once,
    /// on a thread of the writer's own. `status` has become `completed` or `failed` by then.
    virtual void finishWriting(std::function<void()> completion) = 0;

    /// With which gain each track will probably be mixed, in the order of the tracks: the mix may
    /// be made ahead. May be called again; does not block.
    virtual void expectMix(std::vector<float> volumes) = 0;

    virtual FileWriterStatus status() const = 0;
    virtual std::optional<std::string> errorDescription() const = 0;
    /// Once it is finished: how much of what was appended is not in the file, at its end. Any
    /// thread. A file can be completed all the same; `errorDescription` then says why.
    virtual double secondsNotWritten() const = 0;
};

} // namespace vantoro
