// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/media_time.h"
#include "engine/recording_types.h"
#include "engine/sample_buffer.h"
#include "engine/serial_queue.h"

namespace vantoro {

/// What a capture stream delivers; the values are the stream's own numbering.
enum class StreamOutputType : std::uint8_t { screen = 0, audio = 1, microphone = 2 };

struct Display {
    std::uint32_t displayID = 0;

    friend bool operator==(const Display&, const Display&) = default;
};

/// What is filtered out of the stream's content: nothing, but our own sound (see below).
struct ContentFilter {
    Display display;
    std::vector<std::string> excludedApplications;
    std::vector<std::string> exceptedWindows;
};

/// Video is asked for at its minimum, since only sound is wanted.
struct StreamConfiguration {
    int width = 2;
    int height = 2;
    MediaTime minimumFrameInterval{1, 1};
    int queueDepth = 3;
    bool showsCursor = false;
    bool capturesAudio = false;
    bool excludesCurrentProcessAudio = true;
    int sampleRate = 48000;
    int channelCount = 2;
    bool captureMicrophone = false;
    std::optional<std::string> microphoneCaptureDeviceID; ///< absent: the default microphone
};

/// Receives what a stream captures: sound, and what is missing of it, on the queue given to
/// `addOutput`, all else on a thread of the stream's own, where it must only be handed over.
class CaptureStreamReceiver {
public:
    virtual ~CaptureStreamReceiver() = default;
    virtual void didOutputSampleBuffer(const SampleBuffer& buffer, StreamOutputType type) = 0;
    /// This much of what was captured was not taken in time and is lost: silence stands for it,
    /// and what follows is at its right time. Each output tells of its own. Delivery queue; before
    /// the first buffer behind the loss, or behind the last buffer of all.
    virtual void didLoseSound(StreamOutputType type, double seconds) = 0;
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
/// Each output delivers 32-bit float at 48 kHz (audio: 2 channels, microphone: 1) as continuous
/// buffers from shortly after `startCapture` on: a source that is silent, or delivers nothing,
/// yields silence. Both outputs share one clock. All calls come from one task thread at a time;
/// the destructor may also run on the delivery queue.
class CaptureStream {
public:
    virtual ~CaptureStream() = default;
    /// Before `startCapture`. Throws where the type cannot be delivered.
    virtual void addOutput(StreamOutputType type, SerialQueue& queue) = 0;
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
    /// The receiver must outlive the stream.
    virtual std::shared_ptr<CaptureStream> makeStream(const ContentFilter& filter,
                                                      const StreamConfiguration& configuration,
                                                      CaptureStreamReceiver& receiver) = 0;
};

} // namespace vantoro
