// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>

#include "engine/ports/capture_stream.h"
#include "engine/sample_buffer.h"
#include "engine/serial_queue.h"
#include "tests/support/call_log.h"

namespace vantoro::testing {

/// A capture stream that delivers what a test tells it to.
class FakeCaptureService final : public CaptureService {
public:
    explicit FakeCaptureService(CallLog& log) : log_(log) {}

    std::exception_ptr makeStreamError;
    std::exception_ptr startError;
    std::exception_ptr stopError;
    std::function<void()> duringStart;
    std::function<void()> whenStreamGoes;
    CaptureRequest request; ///< of the last stream
    int liveStreams = 0;

    std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& captureRequest,
                                              SerialQueue& deliveryQueue,
                                              CaptureStreamReceiver& receiver) override;

    /// Returns when the buffer has been dealt with.
    void deliver(const SampleBuffer& buffer, AudioLevelSource source);
    /// Returns at once, as the buffer queues behind what is there.
    void deliverLater(const SampleBuffer& buffer, AudioLevelSource source);
    /// Returns when it has been dealt with.
    void loseSound(AudioLevelSource source, double seconds);
    /// Returns when it has been dealt with.
    void muteMicrophone(bool isMuted);
    /// Returns when the stop has been dealt with.
    void stopByItself(std::exception_ptr error);

    CallLog& log() { return log_; }

    SerialQueue* queue = nullptr; ///< of the last stream

private:
    CallLog& log_;
    CaptureStreamReceiver* receiver_ = nullptr;
};

/// A buffer of float samples, all of one value, at a time in frames of 48 kHz.
SampleBuffer bufferAt(std::int64_t frame, std::uint32_t channels = 2, std::size_t frames = 256,
                      float value = 0.5F);

} // namespace vantoro::testing
