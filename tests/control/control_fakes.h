#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "control/ports/audio_devices.h"
#include "control/ports/power_events.h"
#include "control/ports/recorder.h"
#include "engine/ports/permissions.h"

namespace vantoro::testing {

using Recordings = std::vector<std::filesystem::path>;

/// What the fake recorder was asked and how it answers; outlives it.
struct RecorderScript {
    std::vector<std::string> calls;
    std::vector<RecordingOptions> options;            ///< of each start
    std::vector<std::pair<float, float>> volumes;     ///< of each stop: system, microphone
    std::vector<std::filesystem::path> foldersSought; ///< of each salvage
    std::vector<bool> stopRequested; ///< whether each salvage was cancelled by then

    std::exception_ptr startError;
    std::exception_ptr stopError;
    std::filesystem::path recording = "/music/recorded.m4a";
    Recordings salvaged; ///< what each salvage makes, heedless of a requested stop
    std::function<void()> duringStart;
    std::function<void()> duringStop;
    std::function<void()> duringSalvage;

    CaptureInterruptedCallback interrupted;
    AudioLevelCallback level;
    bool recorderLives = false;
};

class FakeRecorder final : public Recorder {
public:
    explicit FakeRecorder(RecorderScript& script) : script_(script) {
        script_.recorderLives = true;
    }

    FakeRecorder(const FakeRecorder&) = delete;
    FakeRecorder& operator=(const FakeRecorder&) = delete;

    ~FakeRecorder() override { script_.recorderLives = false; }

    void setCallbacks(CaptureInterruptedCallback onCaptureInterrupted,
                      AudioLevelCallback onAudioLevel) override {
        script_.interrupted = std::move(onCaptureInterrupted);
        script_.level = std::move(onAudioLevel);
    }

    void start(const RecordingOptions& options) override {
        script_.calls.emplace_back("start");
        script_.options.push_back(options);
        meanwhile(script_.duringStart);
        throwIfThere(script_.startError);
    }

    std::filesystem::path stop(float systemVolume, float microphoneVolume) override {
        script_.calls.emplace_back("stop");
        script_.volumes.emplace_back(systemVolume, microphoneVolume);
        meanwhile(script_.duringStop);
        throwIfThere(script_.stopError);
        return script_.recording;
    }

    Recordings recoverIncompleteRecordings(const std::filesystem::path& folder,
                                           const std::stop_token& stop) override {
        script_.calls.emplace_back("salvage");
        script_.foldersSought.push_back(folder);
        meanwhile(script_.duringSalvage);
        script_.stopRequested.push_back(stop.stop_requested());
        return script_.salvaged;
    }

private:
    static void meanwhile(const std::function<void()>& what) {
        if (what) {
            what();
        }
    }

    static void throwIfThere(const std::exception_ptr& error) {
        if (error) {
            std::rethrow_exception(error);
        }
    }

    RecorderScript& script_;
};

class FakePowerEvents final : public PowerEvents {
public:
    /// As the system does before it sleeps; whether somebody made it wait, tells `isDelayed`.
    void sleep() {
        auto delay = std::make_shared<SleepDelay>();
        delay_ = delay;
        if (willSleep_) {
            willSleep_(std::move(delay));
        }
    }

    void wake() {
        if (didWake_) {
            didWake_();
        }
    }

    bool isDelayed() const { return !delay_.expired(); }

    bool isObserved() const { return static_cast<bool>(willSleep_); }

    std::unique_ptr<PowerObservation>
    observe(std::function<void(std::shared_ptr<SleepDelay>)> willSleep,
            std::function<void()> didWake) override {
        willSleep_ = std::move(willSleep);
        didWake_ = std::move(didWake);
        return std::make_unique<Observation>(*this);
    }

private:
    struct Observation final : PowerObservation {
        explicit Observation(FakePowerEvents& observedEvents) : events(observedEvents) {}

        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;

        ~Observation() override {
            events.willSleep_ = nullptr;
            events.didWake_ = nullptr;
        }

        FakePowerEvents& events;
    };

    std::function<void(std::shared_ptr<SleepDelay>)> willSleep_;
    std::function<void()> didWake_;
    std::weak_ptr<SleepDelay> delay_;
};

class FakeAudioDevices final : public AudioDevices {
public:
    std::vector<AudioInputDevice> list{{"built-in", "Built-in"}, {"headset", "Headset"}};
    std::optional<std::string> systemDefault = "built-in";
    int readings = 0;

    std::vector<AudioInputDevice> microphones() override {
        ++readings;
        return list;
    }

    std::optional<std::string> defaultMicrophone() override { return systemDefault; }
};

/// Permissions that are looked at only: a request is a mistake that `requests` shows.
class FakeScreenPermission final : public ScreenCaptureAccess {
public:
    bool allowed = true;
    int requests = 0;

    bool preflight() override { return allowed; }

    bool request() override {
        ++requests;
        return allowed;
    }
};

class FakeMicrophonePermission final : public MicrophoneAccess {
public:
    AuthorizationStatus current = AuthorizationStatus::authorized;
    int requests = 0;

    AuthorizationStatus status() override { return current; }

    bool request() override {
        ++requests;
        return current == AuthorizationStatus::authorized;
    }
};

} // namespace vantoro::testing
