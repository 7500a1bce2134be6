// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/failure.h"
#include "engine/ports/recording_writer.h"
#include "engine/recorder/level_meter.h"
#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// Reports that capture has failed. Called on the capture queue.
using CaptureInterruptedCallback = std::function<void(std::exception_ptr error)>;

/// Meters and watches each captured buffer, starts the file at the first valid time, and appends to
/// the source's track. Capture queue only.
class SamplePath {
public:
    /// The callbacks are read at each use; set them at any time before. Each may be empty.
    SamplePath(const Clock& clock, const AudioLevelCallback& onAudioLevel,
               const SourceConditionCallback& onSourceCondition,
               const CaptureInterruptedCallback& onCaptureInterrupted);

    /// Takes over the writer of a new recording; an input is null if its source is not recorded.
    void arm(std::unique_ptr<RecordingWriter> writer, RecordingTrack* systemAudioInput,
             RecordingTrack* microphoneInput);
    /// Resets to the initial state. Returns the writer, because destroying it may block.
    std::unique_ptr<RecordingWriter> disarm();

    void append(const SampleBuffer& buffer, AudioLevelSource source);
    /// As `CaptureStreamReceiver::obstacleDidChange`.
    void setObstacle(AudioLevelSource source, SourceCondition obstacle);
    /// Drops all further buffers and reports the error.
    void interrupt(std::exception_ptr error);
    /// Like `interrupt`, but without a report; keeps an earlier error.
    void recordErrorIfNone(std::exception_ptr error);

    /// Finishes the file after all buffers so far, then calls `completion` exactly once, with no
    /// error if the file is complete: from this call, or on a thread of the writer.
    void finish(std::function<void(std::exception_ptr)> completion);

    /// After `finish`: captured sound that is not in the file.
    std::optional<SoundLoss> loss() const;

    /// Marks a time, in seconds since boot, of the recording, if one runs.
    void mark(double uptime, const std::string& text);

    /// The probable mixing gain of each source.
    void expectMix(float systemVolume, float microphoneVolume);

    /// Null while not armed.
    RecordingWriter* writer() const noexcept { return writer_.get(); }

    bool hasStartedWriting() const noexcept { return writerStarted_; }

private:
    RecordingTrack* inputOf(AudioLevelSource source) const noexcept;
    bool startWriting(MediaTime sourceTime);
    void drop(const SampleBuffer& buffer, AudioLevelSource source);
    void reportWriterFailure(FailureCode unknown);

    const AudioLevelCallback& onAudioLevel_;
    const SourceConditionCallback& onSourceCondition_;
    const CaptureInterruptedCallback& onCaptureInterrupted_;
    LevelMeter levelMeter_;
    SourceWatch sourceWatch_;
    std::unique_ptr<RecordingWriter> writer_;
    RecordingTrack* systemAudioInput_ = nullptr;
    RecordingTrack* microphoneInput_ = nullptr;
    bool writerStarted_ = false;
    MediaTime sessionStartTime_; // of the first written buffer; invalid before
    std::exception_ptr captureError_;
    std::exception_ptr writerFailure_;
    std::array<double, 2> secondsDropped_{}; // by source: what the file could not take
};

} // namespace vantoro
