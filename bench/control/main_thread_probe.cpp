// SPDX-License-Identifier: GPL-3.0-or-later

// Makes a recording through the view model on this desktop and prints, for each step, the main
// thread's longest stall in milliseconds. Then it stays idle until its standard input ends, so that
// its wake-ups can be counted.
//
// Usage: main_thread_probe FOLDER SECONDS

#include <chrono>
#include <iostream>
#include <semaphore>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include "app/platform/recording_platform.h"
#include "control/recording_view_model.h"
#include "engine/recorder/audio_recorder.h"
#include "l10n/settings_file.h"

namespace vantoro {
namespace {

using Clock = std::chrono::steady_clock;
using Case = RecordingState::Case;

/// Polls the main thread every few milliseconds from another thread, and keeps the longest stall.
class StallMeter {
public:
    StallMeter() = default;
    StallMeter(const StallMeter&) = delete;
    StallMeter& operator=(const StallMeter&) = delete;

    ~StallMeter() { end(); }

    /// Ends this step and prints its longest stall.
    void print(const std::string& step) {
        const auto longest = std::exchange(longest_, Clock::duration(0));
        std::cout << step << " " << std::chrono::duration<double, std::milli>(longest).count()
                  << '\n'
                  << std::flush;
    }

    void end() {
        asker_.request_stop();
        answered_.release();
        if (asker_.joinable()) {
            asker_.join();
        }
    }

private:
    void ask(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::sleep_for(interval);
            QMetaObject::invokeMethod(&context_, [this, asked = Clock::now()] {
                longest_ = std::max(longest_, Clock::now() - asked);
                answered_.release();
            });
            answered_.acquire();
        }
    }

    static constexpr std::chrono::milliseconds interval{2};
    QObject context_;
    Clock::duration longest_{}; // main thread
    std::counting_semaphore<> answered_{0};
    std::jthread asker_{[this](const std::stop_token& stop) { ask(stop); }};
};

class Probe : public QObject {
public:
    Probe(RecordingViewModel& model, StallMeter& meter, std::chrono::milliseconds duration)
        : model_(model), meter_(meter), duration_(duration) {
        connect(&model, &RecordingViewModel::salvageEnded, this, &Probe::begin,
                Qt::QueuedConnection);
        connect(
            &model, &RecordingProperties::propertyChanged, this,
            [this](RecordingProperties::Property property) {
                if (property == RecordingProperties::Property::state) {
                    advance();
                }
            },
            Qt::QueuedConnection);
    }

private:
    void begin() {
        meter_.print("launch-and-salvage");
        model_.startRecording();
    }

    void advance() {
        switch (model_.values().state.which()) {
        case Case::recording:
            meter_.print("start");
            QTimer::singleShot(duration_, this, [this] {
                meter_.print("recording");
                model_.toggleRecording();
            });
            break;
        case Case::completed:
            if (const auto& recording = model_.values().lastRecordingURL;
                recording && !model_.values().errorMessage) {
                meter_.print("stop");
                meter_.end(); // idle from here on
                std::cout << "saved " << recording->string() << '\n' << std::flush;
            }
            break;
        case Case::failed:
            std::cerr << model_.values().errorMessage.value_or("") << '\n';
            QCoreApplication::exit(1);
            break;
        default:
            break;
        }
    }

    RecordingViewModel& model_;
    StallMeter& meter_;
    std::chrono::milliseconds duration_;
};

int run(const std::string& folder, double seconds) {
    SettingsFile preferences;
    preferences.set(Preference::outputDirectory, folder);
    const auto before = Clock::now();
    RecordingPlatform platform(RecordingPlatform::Meters::shown);
    RecordingViewModel model(std::make_unique<AudioRecorder>(platform.forRecorder()),
                             platform.forControl(preferences));
    std::cout << "construction "
              << std::chrono::duration<double, std::milli>(Clock::now() - before).count() << '\n'
              << std::flush;
    StallMeter meter;
    const Probe probe(model, meter, std::chrono::milliseconds(static_cast<int>(seconds * 1000)));
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [] { QCoreApplication::quit(); });
    return QCoreApplication::exec();
}

} // namespace
} // namespace vantoro

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    if (argumentCount != 3) {
        std::cerr << "usage: main_thread_probe FOLDER SECONDS\n";
        return 2;
    }
    return vantoro::run(arguments[1], std::stod(arguments[2]));
}
