#include <exception>
#include <iostream>
#include <string>
#include <variant>

#include <QCoreApplication>

#include "app/command_line.h"
#include "app/devices_command.h"
#include "app/record_command.h"
#include "app/recording_platform.h"
#include "app/recover_command.h"
#include "app/stop_signals.h"
#include "engine/audio_recorder.h"
#include "platform/desktop/recording_folder.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/pipewire/device_list.h"
#include "platform/pipewire/screen_capture_access.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"

namespace vantoro {

namespace {

/// Prints a result on standard output; false when nobody can read it there.
bool print(const std::string& text) {
    std::cout << text << std::flush;
    if (!std::cout) {
        std::cerr << "The result could not be printed.\n";
    }
    return std::cout.good();
}

/// Carries out one command; the result is the exit status.
class Program {
public:
    explicit Program(StopSignals& signals) : signals_(signals) {}

    int operator()(const PrintCommand& command) const { return print(command.text) ? 0 : 1; }

    int operator()(const UsageError& error) const {
        std::cerr << error.text << "\n";
        return 2;
    }

    int operator()(const DevicesCommand& /*command*/) const {
        const pipewire::DeviceList devices;
        const auto microphones = devices.microphones();
        if (!microphones.empty()) {
            return print(devicesText(microphones, devices.defaultMicrophone())) ? 0 : 1;
        }
        const bool isReachable = pipewire::ScreenCaptureAccess().preflight();
        std::cerr << (isReachable ? "There is no microphone.\n"
                                  : "The sound server cannot be reached.\n");
        return isReachable ? 0 : 1;
    }

    int operator()(const RecoverCommand& command) const {
        posix::PosixFileSystem fileSystem;
        ffmpeg::FfmpegToolkit mediaToolkit(fileSystem);
        const posix::SystemClock clock;
        return runRecoverCommand(command, desktop::defaultRecordingFolder(),
                                 {mediaToolkit, fileSystem, clock}, signals_);
    }

    int operator()(const RecordCommand& command) const {
        RecordingPlatform platform(command.microphoneID);
        AudioRecorder recorder(platform.forRecorder());
        return runRecordCommand(command, desktop::defaultRecordingFolder(), recorder, signals_);
    }

private:
    StopSignals& signals_;
};

} // namespace

} // namespace vantoro

int main(int argc, char** argv) {
    try {
        vantoro::StopSignals signals; // before anything starts a thread
        const QCoreApplication application(argc, argv);
        return std::visit(vantoro::Program(signals),
                          vantoro::parseCommandLine(QCoreApplication::arguments().mid(1)));
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
