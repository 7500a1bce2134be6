// SPDX-License-Identifier: GPL-3.0-or-later

// Starts recording both sources as `vantoro record` does, and prints the milliseconds from the
// process start to the first captured frame.
// Usage: first_frame FOLDER NANOSECONDS; the process start on CLOCK_MONOTONIC.

#include <cstdlib>
#include <exception>
#include <future>
#include <iostream>
#include <memory>
#include <string>

#include <QCoreApplication>

#include "app/platform/recording_platform.h"
#include "engine/recorder/audio_recorder.h"
#include "platform/desktop/bus/silent_buses.h"
#include "platform/desktop/realtime_services.h"
#include "platform/pipewire/bus_use.h"
#include "platform/posix/allocation.h"

namespace vantoro::bench {

namespace {

/// Forwards all calls, and keeps the time of the first frame.
class NotingReceiver final : public CaptureStreamReceiver {
public:
    explicit NotingReceiver(CaptureStreamReceiver& receiver) : receiver_(receiver) {}

    std::future<MediaTime> firstTime() { return firstTime_.get_future(); }

    void didOutputSampleBuffer(const SampleBuffer& buffer, AudioLevelSource source) override {
        receiver_.didOutputSampleBuffer(buffer, source);
        if (!std::exchange(hasTime_, true)) {
            firstTime_.set_value(buffer.presentationTime);
        }
    }

    void didLoseSound(AudioLevelSource source, double seconds) override {
        receiver_.didLoseSound(source, seconds);
    }

    void streamDidStop(std::exception_ptr error) override {
        receiver_.streamDidStop(std::move(error));
    }

    void obstacleDidChange(AudioLevelSource source, SourceCondition obstacle) override {
        receiver_.obstacleDidChange(source, obstacle);
    }

private:
    CaptureStreamReceiver& receiver_;
    std::promise<MediaTime> firstTime_;
    bool hasTime_ = false;
};

class NotingService final : public CaptureService {
public:
    explicit NotingService(CaptureService& service) : service_(service) {}

    std::shared_ptr<CaptureStream> makeStream(const CaptureRequest& request, SerialQueue& queue,
                                              CaptureStreamReceiver& receiver) override {
        receiver_ = std::make_unique<NotingReceiver>(receiver);
        return service_.makeStream(request, queue, *receiver_);
    }

    NotingReceiver& receiver() { return *receiver_; }

private:
    CaptureService& service_;
    std::unique_ptr<NotingReceiver> receiver_;
};

void measure(const char* folder, std::int64_t begin) {
    static_cast<void>(desktop::leaveOutSilentBuses(desktop::BusUsers::soundAlone, -1));
    RecordingPlatform platform(RecordingPlatform::Meters::none);
    auto parts = platform.forRecorder();
    NotingService service(parts.captureService);
    AudioRecorder recorder({.captureAccess = parts.captureAccess,
                            .microphoneAccess = parts.microphoneAccess,
                            .captureService = service,
                            .mediaToolkit = parts.mediaToolkit,
                            .fileSystem = parts.fileSystem,
                            .clock = parts.clock});
    recorder.start({.captureSystemAudio = true,
                    .captureMicrophone = true,
                    .microphoneDeviceID = {},
                    .outputDirectory = folder});
    const auto first = service.receiver().firstTime().get().inUnitsOf(1'000'000'000);
    std::cout << static_cast<double>(first - begin) / 1e6 << '\n';
    static_cast<void>(recorder.stop(1, 1));
}

} // namespace

} // namespace vantoro::bench

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::cerr << "usage: " << arguments[0] << " FOLDER NANOSECONDS\n";
        return 2;
    }
    try {
        vantoro::posix::keepMemorySmall();
        vantoro::pipewire::useBusesIf(vantoro::desktop::realtimeServicesAnswerHere);
        const QCoreApplication application(argumentCount, arguments);
        vantoro::bench::measure(arguments[1], std::stoll(arguments[2]));
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
