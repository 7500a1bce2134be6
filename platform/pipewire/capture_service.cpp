// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/capture_service.h"

#include <utility>

#include "platform/pipewire/capture_error.h"
#include "platform/pipewire/capture_session.h"

namespace vantoro::pipewire {

namespace {

CaptureSettings settingsOf(const StreamConfiguration& configuration,
                           std::chrono::milliseconds deliveryInterval,
                           std::chrono::seconds longestStandstill) {
    return {.systemAudio = configuration.capturesAudio,
            .microphone = configuration.captureMicrophone,
            .microphoneName = configuration.microphoneCaptureDeviceID,
            .excludesOwnSound = configuration.excludesCurrentProcessAudio,
            .deliveryInterval = deliveryInterval,
            .longestStandstill = longestStandstill};
}

class Stream final : public CaptureStream {
public:
    Stream(CaptureSettings settings, CaptureStreamReceiver& receiver)
        : settings_(std::move(settings)), receiver_(receiver) {}

    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    ~Stream() override {
        session_.reset();
        if (delivery_) {
            delivery_->close();
        }
    }

    void addOutput(StreamOutputType type, SerialQueue& queue) override {
        if (queue_ != nullptr && queue_ != &queue) {
            throw CaptureError("Both outputs of a recording are delivered on one queue.");
        }
        if (type == StreamOutputType::audio && settings_.systemAudio) {
            outputs_.audio = true;
        } else if (type == StreamOutputType::microphone && settings_.microphone) {
            outputs_.microphone = true;
        } else {
            throw CaptureError("The recording was not set up to deliver this output.");
        }
        queue_ = &queue;
    }

    void startCapture() override {
        if (queue_ == nullptr || delivery_) {
            throw CaptureError("The recording cannot be started.");
        }
        delivery_ = std::make_shared<capture::CaptureDelivery>(*queue_, receiver_, outputs_);
        session_ = std::make_unique<CaptureSession>(
            settings_, delivery_,
            CaptureSession::Events{
                .stopped =
                    [this](std::exception_ptr error) { receiver_.streamDidStop(std::move(error)); },
                .obstacleChanged =
                    [this](AudioLevelSource source, SourceCondition obstacle) {
                        receiver_.obstacleDidChange(source, obstacle);
                    }});
        try {
            session_->start();
        } catch (...) {
            session_.reset();
            throw;
        }
    }

    void stopCapture() override { session_.reset(); }

private:
    const CaptureSettings settings_;
    CaptureStreamReceiver& receiver_;
    SerialQueue* queue_ = nullptr;
    capture::DeliveredOutputs outputs_;
    std::shared_ptr<capture::CaptureDelivery> delivery_;
    std::unique_ptr<CaptureSession> session_;
};

} // namespace

std::shared_ptr<CaptureStream> CaptureService::makeStream(const ContentFilter& /*filter*/,
                                                          const StreamConfiguration& configuration,
                                                          CaptureStreamReceiver& receiver) {
    return std::make_shared<Stream>(
        settingsOf(configuration, deliveryInterval_, longestStandstill_), receiver);
}

} // namespace vantoro::pipewire
