// SPDX-License-Identifier: GPL-3.0-or-later

#include <chrono>
#include <csignal>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>

#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

#include "app/commands/record_command.h"
#include "app/ending/ending.h"
#include "app/ending/stop_signals.h"
#include "control/tasks/qt_scheduler.h"
#include "engine/recorder/audio_recorder.h"
#include "platform/ffmpeg/toolkit.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/system_clock.h"
#include "tests/crash/support/heard_tones.h"
#include "tests/support/call_log.h"
#include "tests/support/fake_desktop.h"
#include "tests/support/fake_permissions.h"
#include "tests/support/fake_power.h"
#include "tests/support/memory_preferences.h"

// fed_recorder FOLDER FRAMES [ahead | tracks]: as "vantoro record --folder FOLDER" except for the
// capture: it delivers that many frames faster than real time, then presses Ctrl-C. With "ahead"
// the mix is made while recording, otherwise at the stop. With "tracks" the sources are kept apart,
// too.

namespace vantoro::testing {

namespace {

using namespace std::chrono_literals;

/// Waits for the salvage at the program's start before this recording begins.
void waitForSalvage(const RecordingViewModel& model) {
    QEventLoop loop;
    QObject::connect(&model, &RecordingViewModel::salvageEnded, &loop, &QEventLoop::quit);
    QTimer::singleShot(1s, &loop, &QEventLoop::quit);
    loop.exec();
}

class FedRecorder {
public:
    FedRecorder(Ending& ending, const std::filesystem::path& folder, std::int64_t frames,
                const std::string& option)
        : frames_(frames),
          isMixedAhead_(option == "ahead"),
          toolkit_(fileSystem_,
                   [this] {
                       mixBegins_.release(); // queried last
                       return !isMixedAhead_;
                   }),
          run_(command_, ending, preferences_),
          model_(std::make_unique<AudioRecorder>(RecorderPlatform{
                     captureAccess_, microphone_, capture_, toolkit_, fileSystem_, clock_}),
                 {scheduler_, power_, devices_, microphone_, opener_, folderDialog_, preferences_,
                  levels_, folder, [&ending] { ending.progressed(); }}) {
        preferences_.values[Preference::keepTracks] = option == "tracks" ? "true" : "false";
    }

    int run() {
        waitForSalvage(model_);
        QObject::connect(&model_, &RecordingProperties::stateChanged, qApp, [this] {
            if (isRecording() && !feeder_.joinable()) {
                feeder_ = std::jthread([this] { feed(); });
            }
        });
        return run_.run(model_);
    }

private:
    bool isRecording() const {
        return model_.values().state.which() == RecordingState::Case::recording;
    }

    void feed() {
        tones_.until(frames_);
        if (isMixedAhead_) {
            // With a time limit, because an earlier step may have failed.
            static_cast<void>(mixBegins_.try_acquire_for(10s));
        }
        QMetaObject::invokeMethod(qApp, [this] {
            if (isRecording()) {
                ::kill(::getpid(), SIGINT);
            }
        });
    }

    std::int64_t frames_;
    bool isMixedAhead_;
    std::counting_semaphore<> mixBegins_{0};
    CallLog log_;
    FakeCaptureAccess captureAccess_{log_};
    FakeMicrophoneAccess microphone_{log_};
    FakeCaptureService capture_{log_};
    HeardTones tones_{capture_};
    posix::PosixFileSystem fileSystem_;
    ffmpeg::FfmpegToolkit toolkit_;
    posix::SystemClock clock_;
    MemoryPreferences preferences_ = preferencesIn("en");
    FakePower power_;
    FakeAudioDevices devices_;
    FakeOpener opener_;
    FakeFolderDialog folderDialog_;
    AudioLevelStore levels_;
    RecordCommand command_;
    RecordRun run_;
    QtScheduler scheduler_;
    RecordingViewModel model_;
    std::jthread feeder_;
};

} // namespace

} // namespace vantoro::testing

int main(int argc, char** argv) {
    if (argc < 3) {
        return 2;
    }
    try {
        vantoro::StopSignals signals;
        vantoro::Ending ending(signals);
        const QCoreApplication application(argc, argv);
        return vantoro::testing::FedRecorder(ending, argv[1], std::stoll(argv[2]),
                                             argc > 3 ? argv[3] : "")
            .run();
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
}
