// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/pipewire/pipewire_capture.h"

#include <stdexcept>
#include <utility>

#include "platform/pipewire/capture_session.h"

namespace vantoro::pipewire {

namespace {

class Stream final : public CaptureStream {
public:
    Stream(CaptureRequest request, CaptureSettings settings, SerialQueue& queue,
           CaptureStreamReceiver& receiver)
        : request_(std::move(request)), settings_(settings), queue_(queue), receiver_(receiver) {}

    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    ~Stream() override {
        session_.reset();
        if (delivery_) {
            delivery_->close();
        }
    }

    void startCapture() override {
        if (delivery_) {
            throw std::logic_error("The recording cannot be started.");
        }
        delivery_ = std::make_shared<capture::CaptureDelivery>(
            queue_, receiver_,
            capture::DeliveredSources{.systemAudio = request_.systemAudio,
                                      .microphone = request_.microphone});
        session_ = std::make_unique<CaptureSession>(request_, settings_, delivery_, receiver_);
        try {
            session_->start();
        } catch (...) {
            session_.reset();
            throw;
        }
    }

    void stopCapture() override { session_.reset(); }

private:
    const CaptureRequest request_;
    const CaptureSettings settings_;
    SerialQueue& queue_;
    CaptureStreamReceiver& receiver_;
    std::shared_ptr<capture::CaptureDelivery> delivery_;
    std::unique_ptr<CaptureSession> session_;
};

} // namespace

std::shared_ptr<CaptureStream> PipeWireCapture::makeStream(const CaptureRequest& request,
                                                           SerialQueue& queue,
                                                           CaptureStreamReceiver& receiver) {
    return std::make_shared<Stream>(request, settings_, queue, receiver);
}

} // namespace vantoro::pipewire
