// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "engine/recording_types.h"
#include "engine/sample_buffer.h"
#include "engine/serial_queue.h"

namespace vantoro {

/// What is to be captured: one source at least.
struct CaptureRequest {
    bool systemAudio = false; ///< all that the computer plays, this program excepted
    bool microphone = false;
    std::optional<std::string> microphoneID = std::nullopt; ///< absent: the default microphone
};

/// Receives what a stream captures: sound, and what is missing of it, on the queue given to
/// `makeStream`, all else on a thread of the stream's own, where it must only be handed over.
class CaptureStreamReceiver {
public:
    virtual ~CaptureStreamReceiver() = default;
    virtual void didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) = 0;
    /// This much of what was captured was not taken in time and is lost: silence stands for it,
    /// and what follows is at its right time. Each source tells of its own. Delivery queue; before
    /// the first buffer behind the loss, or behind the last buffer of all.
    virtual void didLoseSound(AudioLevelSource source, double seconds) = 0;
    /// The stream stopped by itself; it delivers nothing more. Called once at most, and never
    /// after `stopCapture` was called. The stream may be destroyed from the work that it hands
    /// over.
    virtual void streamDidStop(std::exception_ptr error) = 0;
    /// What keeps a source from being recorded, or, from a source of which it was told, that
    /// nothing does any more (`delivering`): the microphone is `muted`, the system's audio `coded`.
    virtual void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) = 0;
};

/// A stream of timed sound: every application's but our own, and one microphone.
///
/// Each source delivers 32-bit float at 48 kHz (system audio: 2 channels, microphone: 1) as
/// continuous buffers from shortly after `startCapture` on: a source that is silent, or delivers
/// nothing, yields silence. Both share one clock. All calls come from one task thread at a time;
/// the destructor may also run on the delivery queue.
class CaptureStream {
public:
    virtual ~CaptureStream() = default;
    /// Returns when capture runs; throws when it cannot (no sound server, unknown microphone).
    /// Takes a bounded time.
    virtual void startCapture() = 0;
    /// Returns once nothing further will be put on the queue: all that was captured up to the call
    /// has been delivered or is already queued there. Takes a bounded time.
    virtual void stopCapture() = 0;
};

class CaptureService {
public:
    virtual ~CaptureService() = default;
    /// Sound is delivered on the queue, which must outlive the stream, as the receiver must.
    virtual std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& request,
                                                      SerialQueue& queue,
                                                      CaptureStreamReceiver& receiver) = 0;
};

} // namespace vantoro
