#include "app/recording_platform.h"

#include <exception>

#include "engine/serial_queue.h"
#include "platform/pipewire/device_list.h"

namespace vantoro {

namespace {

/// Takes what is captured, and no notice of it.
class DiscardingReceiver final : public CaptureStreamReceiver {
public:
    void didOutputSampleBuffer(const SampleBuffer& /*buffer*/, StreamOutputType /*type*/) override {
    }

    void streamDidStop(std::exception_ptr /*error*/) override {}
};

/// Records a microphone for a moment; whether that is possible.
bool canOpen(CaptureService& service, const std::optional<std::string>& microphone) {
    DiscardingReceiver receiver;
    SerialQueue queue("com.vantoro.microphone-request");
    StreamConfiguration configuration;
    configuration.captureMicrophone = true;
    configuration.microphoneCaptureDeviceID = microphone;
    try {
        const auto stream = service.makeStream({}, configuration, receiver);
        stream->addOutput(StreamOutputType::microphone, queue);
        stream->startCapture();
        stream->stopCapture();
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

/// A microphone was chosen from somewhere, yet none is shown to us.
bool isHidden(const std::optional<std::string>& microphone) {
    return microphone && pipewire::DeviceList().microphones().empty();
}

} // namespace

RecordingPlatform::RecordingPlatform(const std::optional<std::string>& chosenMicrophone)
    : microphoneAccess_(
          [this, chosenMicrophone] { return canOpen(captureService_, chosenMicrophone); },
          [chosenMicrophone] { return isHidden(chosenMicrophone); }) {}

RecorderPlatform RecordingPlatform::forRecorder() {
    return {.screenCaptureAccess = screenCaptureAccess_,
            .microphoneAccess = microphoneAccess_,
            .shareableContent = displays_,
            .captureService = captureService_,
            .mediaToolkit = mediaToolkit_,
            .fileSystem = fileSystem_,
            .clock = clock_};
}

} // namespace vantoro
