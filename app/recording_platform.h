#pragma once

#include <optional>
#include <string>

#include "engine/audio_recorder.h"
#include "platform/desktop/displays.h"
#include "platform/desktop/microphone_access.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/pipewire/capture_service.h"
#include "platform/pipewire/screen_capture_access.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"

namespace vantoro {

/// Everything that a recorder needs of this desktop, put together. Outlives the recorder.
class RecordingPlatform {
public:
    /// `chosenMicrophone`: the microphone that will be recorded, where it is not the default one.
    explicit RecordingPlatform(const std::optional<std::string>& chosenMicrophone);

    RecorderPlatform forRecorder();

private:
    pipewire::ScreenCaptureAccess screenCaptureAccess_;
    pipewire::CaptureService captureService_;
    desktop::DesktopMicrophoneAccess microphoneAccess_;
    desktop::DesktopDisplays displays_;
    posix::PosixFileSystem fileSystem_;
    ffmpeg::FfmpegToolkit mediaToolkit_{fileSystem_};
    posix::SystemClock clock_;
};

} // namespace vantoro
