// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/support/fake_capture_service.h"

#include <array>
#include <map>
#include <mutex>
#include <span>
#include <utility>

namespace vantoro::testing {

namespace {

class FakeStream final : public CaptureStream {
public:
    explicit FakeStream(FakeCaptureService& service) : service_(service) { ++service_.liveStreams; }

    FakeStream(const FakeStream&) = delete;
    FakeStream& operator=(const FakeStream&) = delete;

    ~FakeStream() override {
        if (service_.whenStreamGoes) {
            service_.whenStreamGoes();
        }
        --service_.liveStreams;
    }

    void startCapture() override {
        service_.log().add("startCapture");
        if (service_.duringStart) {
            service_.duringStart();
        }
        throwIfSet(service_.startError);
    }

    void stopCapture() override {
        service_.log().add("stopCapture");
        throwIfSet(service_.stopError);
    }

private:
    FakeCaptureService& service_;
};

} // namespace

std::shared_ptr<CaptureStream> FakeCaptureService::makeStream(const CaptureRequest& captureRequest,
                                                              SerialQueue& deliveryQueue,
                                                              CaptureStreamReceiver& receiver) {
    log_.add("makeStream " + deliveryQueue.label());
    throwIfSet(makeStreamError);
    request = captureRequest;
    queue = &deliveryQueue;
    receiver_ = &receiver;
    return std::make_shared<FakeStream>(*this);
}

void FakeCaptureService::deliver(const SampleBuffer& buffer, AudioLevelSource source) {
    queue->sync([&] { receiver_->didOutputSampleBuffer(buffer, source); });
}

void FakeCaptureService::deliverLater(const SampleBuffer& buffer, AudioLevelSource source) {
    queue->async([this, buffer, source] { receiver_->didOutputSampleBuffer(buffer, source); });
}

void FakeCaptureService::loseSound(AudioLevelSource source, double seconds) {
    queue->sync([&] { receiver_->didLoseSound(source, seconds); });
}

void FakeCaptureService::muteMicrophone(bool isMuted) {
    receiver_->obstacleDidChange(AudioLevelSource::microphone,
                                 isMuted ? SourceCondition::muted : SourceCondition::delivering);
    queue->sync([] {});
}

void FakeCaptureService::stopByItself(std::exception_ptr error) {
    receiver_->streamDidStop(std::move(error));
    queue->sync([] {});
}

SampleBuffer bufferAt(std::int64_t frame, std::uint32_t channels, std::size_t frames, float value) {
    static const auto samplesOf = [](float fill) {
        static std::mutex mutex;
        static std::map<float, std::array<float, 4096>> all;
        const std::lock_guard lock(mutex);
        auto [entry, isNew] = all.try_emplace(fill);
        if (isNew) {
            entry->second.fill(fill);
        }
        return std::span<const float>(entry->second);
    };
    return {.dataIsReady = true,
            .frameCount = static_cast<std::int64_t>(frames),
            .presentationTime = {frame, 48000},
            .format = AudioStreamDescription{.sampleRate = 48000, .channelsPerFrame = channels},
            .samples = samplesOf(value).first(channels * frames)};
}

} // namespace vantoro::testing
