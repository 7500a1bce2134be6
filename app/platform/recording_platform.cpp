// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/platform/recording_platform.h"

#include <chrono>
#include <exception>
#include <utility>

#include "engine/recorder/logged_recorder.h"
#include "engine/serial_queue.h"
#include "platform/desktop/opening/default_recording_folder.h"

namespace vantoro {

namespace {

pipewire::CaptureSettings settingsFor(RecordingPlatform::Meters meters) {
    pipewire::CaptureSettings settings;
    if (meters == RecordingPlatform::Meters::none) {
        settings.deliveryInterval = std::chrono::milliseconds(500); // nobody is waiting for levels
    }
    return settings;
}

/// Discards what is captured.
class DiscardingReceiver final : public CaptureStreamReceiver {
public:
    void didOutputSampleBuffer(const SampleBuffer& /*buffer*/,
                               AudioLevelSource /*source*/) override {}

    void didLoseSound(AudioLevelSource /*source*/, double /*seconds*/) override {}

    void streamDidStop(std::exception_ptr /*error*/) override {}

    void obstacleDidChange(AudioLevelSource /*source*/, SourceCondition /*obstacle*/) override {}
};

/// Whether a microphone can be recorded; tries it for a moment.
bool canOpen(CaptureService& service, const std::optional<std::string>& microphone) {
    DiscardingReceiver receiver;
    SerialQueue queue("com.vantoro.microphone-request");
    const CaptureRequest request{.microphone = true, .microphoneID = microphone};
    try {
        const auto stream = service.makeStream(request, queue, receiver);
        stream->startCapture();
        stream->stopCapture();
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

/// Whether a microphone is chosen but the sound server lists none.
bool isHidden(AudioDevices& devices, const std::optional<std::string>& microphone) {
    return microphone && devices.find().microphones.empty();
}

} // namespace

RecordingPlatform::RecordingPlatform(Meters meters, QtScheduler::TaskStart taskStart)
    : journal_(meters == Meters::shown ? journal::Journal::WithoutJournal::printFaults
                                       : journal::Journal::WithoutJournal::discard),
      captureService_(settingsFor(meters)),
      microphoneAccess_([this] { return canOpen(captureService_, chosenMicrophone()); },
                        [this] { return isHidden(soundServer_, chosenMicrophone()); }),
      scheduler_(taskStart) {}

void RecordingPlatform::setChosenMicrophone(std::optional<std::string> id) {
    const std::lock_guard lock(mutex_);
    chosenMicrophone_ = std::move(id);
}

std::optional<std::string> RecordingPlatform::chosenMicrophone() {
    const std::lock_guard lock(mutex_);
    return chosenMicrophone_;
}

std::unique_ptr<Recorder> RecordingPlatform::makeRecorder() {
    return std::make_unique<LoggedRecorder>(std::make_unique<AudioRecorder>(forRecorder()),
                                            journal_, clock_);
}

RecorderPlatform RecordingPlatform::forRecorder() {
    return {.captureAccess = soundServer_,
            .microphoneAccess = microphoneAccess_,
            .captureService = captureService_,
            .mediaToolkit = mediaToolkit_,
            .fileSystem = fileSystem_,
            .clock = clock_};
}

ControlPlatform RecordingPlatform::forControl(Preferences& preferences,
                                              std::function<void()> recorderProgressed) {
    return {.scheduler = scheduler_,
            .power = power_,
            .audioDevices = soundServer_,
            .microphoneAccess = microphoneAccess_,
            .opener = opener_,
            .folderDialog = folderDialog_,
            .preferences = preferences,
            .levels = AudioLevelStore::shared(),
            .defaultRecordingFolder = desktop::defaultRecordingFolder(),
            .recorderProgressed = std::move(recorderProgressed)};
}

} // namespace vantoro
