// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "engine/failure.h"
#include "engine/ports/recording_writer.h"
#include "engine/recorder/level_meter.h"
#include "engine/recorder/source_watch.h"
#include "engine/recording_types.h"

namespace vantoro {

/// Told that capture can no longer be trusted. Called on the capture queue.
using CaptureInterruptedCallback = std::function<void(std::exception_ptr error)>;

/// Takes a recording's buffers from the capture stream to the file: each is metered and watched,
/// the first one with a valid time starts the file, and all that follow are appended to their
/// source's track. Used on the capture queue only.
class SamplePath {
public:
    /// The callbacks are read at each use; they may be set, or be empty, at any time before.
    SamplePath(const Clock& clock, const AudioLevelCallback& onAudioLevel,
               const SourceConditionCallback& onSourceCondition,
               const CaptureInterruptedCallback& onCaptureInterrupted);

    /// Takes in the writer of a new recording; the inputs are its tracks, or null.
    void arm(std::unique_ptr<RecordingWriter> writer, RecordingTrack* systemAudioInput,
             RecordingTrack* microphoneInput);
    /// Back to the initial state. Returns the writer, since destroying it may take its time.
    std::unique_ptr<RecordingWriter> disarm();

    void append(const SampleBuffer& buffer, AudioLevelSource source);
    /// The microphone was switched off, or on again, in the desktop's mixer.
    void setObstacle(AudioLevelSource source, SourceCondition obstacle);
    /// Every buffer from now on is dropped, and the receiver is told.
    void interrupt(std::exception_ptr error);
    /// As `interrupt`, but silent, and an earlier cause is kept.
    void recordErrorIfNone(std::exception_ptr error);

    /// Finishes the file behind all buffers so far, then calls `completion` exactly once, with no
    /// error when the file is complete: here, or on a thread of the writer's.
    void finish(std::function<void(std::exception_ptr)> completion);

    /// Behind `finish`: what was captured and is not in the file.
    std::optional<SoundLoss> loss() const;

    /// With which gain each source will probably be mixed.
    void expectMix(float systemVolume, float microphoneVolume);

    /// Null while it is not armed.
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
    MediaTime sessionStartTime_; // of the first buffer written; invalid until then
    std::exception_ptr captureError_;
    std::exception_ptr writerFailure_;
    std::map<AudioLevelSource, double> secondsDropped_; // since the file could not take them
};

} // namespace vantoro
