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

/// What to capture: at least one source.
struct CaptureRequest {
    bool systemAudio = false; ///< everything the computer plays, except this program
    bool microphone = false;
    std::optional<std::string> microphoneID = std::nullopt; ///< default microphone if absent
};

/// Receives captured sound and losses on the queue passed to `makeStream`, everything else on a
/// thread of the stream, where it must only be handed over.
class CaptureStreamReceiver {
public:
    virtual ~CaptureStreamReceiver() = default;
    virtual void didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) = 0;
    /// So much sound was not taken in time; silence replaces it. Reported before the source's first
    /// buffer after the loss, or after its last one.
    virtual void didLoseSound(AudioLevelSource source, double seconds) = 0;
    /// The stream stopped on its own and delivers nothing more. At most once, and never after
    /// `stopCapture`. The handed-over work may destroy the stream.
    virtual void streamDidStop(std::exception_ptr error) = 0;
    /// A source cannot be recorded (microphone `muted`, system audio `coded`), or can be again
    /// (`delivering`).
    virtual void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) = 0;
};

/// A stream of timed sound: all applications except our own, and one microphone.
///
/// Each source delivers 32-bit float at 48 kHz (system audio: 2 channels, microphone: 1) in
/// contiguous buffers, on one clock; an idle source yields silence. One task thread at a time; the
/// destructor may also run on the delivery queue.
class CaptureStream {
public:
    virtual ~CaptureStream() = default;
    /// Returns once capture runs; throws if it cannot (no sound server, unknown microphone). Takes
    /// a bounded time.
    virtual void startCapture() = 0;
    /// Returns once all sound captured before the call is delivered or queued; nothing is queued
    /// afterwards. Takes a bounded time.
    virtual void stopCapture() = 0;
};

class CaptureService {
public:
    virtual ~CaptureService() = default;
    /// Delivers sound on the queue. The queue and the receiver must outlive the stream.
    virtual std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& request,
                                                      SerialQueue& queue,
                                                      CaptureStreamReceiver& receiver) = 0;
};

} // namespace vantoro
