// SPDX-License-Identifier: GPL-3.0-or-later

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
#include "control/ports/folder_dialog.h"
#include "control/ports/opener.h"
#include "control/ports/power_management.h"
#include "engine/ports/permissions.h"

namespace vantoro::testing {

using Recordings = std::vector<std::filesystem::path>;

/// The calls that the fake recorder received, and its answers. Outlives the recorder.
struct RecorderScript {
    std::vector<std::string> calls;
    std::vector<RecordingOptions> options;        ///< of each start
    std::vector<std::pair<float, float>> volumes; ///< of each stop: system, microphone
    std::vector<std::pair<float, float>> expectedVolumes;
    std::vector<std::filesystem::path> foldersSought; ///< of each salvage
    std::vector<bool> stopRequested; ///< whether each salvage was cancelled by then

    std::exception_ptr startError;
    std::exception_ptr stopError;
    bool keepsRecording = true; ///< after a failed stop
    std::filesystem::path recording = "/music/recorded.m4a";
    Recordings salvaged; ///< the result of each salvage, even if a stop was requested
    Recordings keptOriginals;
    std::function<void()> duringStart;
    std::function<void()> duringStop;
    std::function<void()> duringSalvage;

    Recorder* recorder = nullptr; ///< the latest one
    bool recorderLives = false;
};

class FakeRecorder final : public Recorder {
public:
    explicit FakeRecorder(RecorderScript& script) : script_(script) {
        script_.recorderLives = true;
        script_.recorder = this;
    }

    FakeRecorder(const FakeRecorder&) = delete;
    FakeRecorder& operator=(const FakeRecorder&) = delete;

    ~FakeRecorder() override { script_.recorderLives = false; }

    void start(const RecordingOptions& options) override {
        script_.calls.emplace_back("start");
        script_.options.push_back(options);
        meanwhile(script_.duringStart);
        throwIfThere(script_.startError);
    }

    void expectVolumes(float systemVolume, float microphoneVolume) override {
        script_.expectedVolumes.emplace_back(systemVolume, microphoneVolume);
    }

    std::filesystem::path stop(float systemVolume, float microphoneVolume) override {
        script_.calls.emplace_back("stop");
        script_.volumes.emplace_back(systemVolume, microphoneVolume);
        meanwhile(script_.duringStop);
        throwIfThere(script_.stopError);
        onRecordingSafe();
        return script_.recording;
    }

    bool hasKeptRecording() const noexcept override { return script_.keepsRecording; }

    SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                              const std::stop_token& stop) override {
        script_.calls.emplace_back("salvage");
        script_.foldersSought.push_back(folder);
        meanwhile(script_.duringSalvage);
        script_.stopRequested.push_back(stop.stop_requested());
        return {script_.salvaged, script_.keptOriginals, {}};
    }

private:
    // NOLINTNEXTLINE(performance-unnecessary-value-param): the call may replace it
    static void meanwhile(std::function<void()> what) {
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

class FakePower final : public PowerManagement {
public:
    std::vector<std::string> reasons; ///< of each hold, in order

    /// What the system does before it sleeps.
    void sleep() {
        if (willSleep_) {
            willSleep_();
        }
    }

    void wake() {
        if (didWake_) {
            didWake_();
        }
    }

    bool isHeldOff() const { return holds_ > 0; }

    bool isObserved() const { return static_cast<bool>(willSleep_); }

    std::unique_ptr<PowerObservation> observe(std::function<void()> willSleep,
                                              std::function<void()> didWake) override {
        willSleep_ = std::move(willSleep);
        didWake_ = std::move(didWake);
        return std::make_unique<Observation>(*this);
    }

    std::unique_ptr<SleepHold> holdOffSleep(const std::string& reason) override {
        reasons.push_back(reason);
        return std::make_unique<Hold>(holds_);
    }

private:
    struct Observation final : PowerObservation {
        explicit Observation(FakePower& observedPower) : power(observedPower) {}

        Observation(const Observation&) = delete;
        Observation& operator=(const Observation&) = delete;

        ~Observation() override {
            power.willSleep_ = nullptr;
            power.didWake_ = nullptr;
        }

        FakePower& power;
    };

    struct Hold final : SleepHold {
        explicit Hold(int& holds) : all(holds) { ++all; }

        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

        ~Hold() override { --all; }

        int& all;
    };

    std::function<void()> willSleep_;
    std::function<void()> didWake_;
    int holds_ = 0;
};

class FakeAudioDevices final : public AudioDevices {
public:
    std::vector<AudioInputDevice> list{{"built-in", "Built-in"}, {"headset", "Headset"}};
    std::optional<std::string> systemDefault = "built-in";
    int readings = 0;
    std::function<void()> meanwhile; ///< runs once, while the list is being read

    bool mayCapture = true;

    FoundDevices find() override {
        ++readings;
        if (const auto what = std::exchange(meanwhile, nullptr)) {
            what();
        }
        return {.mayCapture = mayCapture, .microphones = list, .defaultMicrophone = systemDefault};
    }
};

/// Only `status` is expected; `requests` reveals a prompt.
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

/// Records the requests.
class FakeOpener final : public Opener {
public:
    std::vector<std::string> calls;

    void open(const std::filesystem::path& file) override {
        calls.push_back("open " + file.string());
    }

    void openFolder(const std::filesystem::path& folder) override {
        calls.push_back("open folder " + folder.string());
    }

    void reveal(const std::filesystem::path& file) override {
        calls.push_back("reveal " + file.string());
    }

    void openPage(const std::string& address) override { calls.push_back("page " + address); }

    void openPrivacySettings(const std::string& anchor) override {
        calls.push_back("settings " + anchor);
    }
};

/// The test plays the user.
class FakeFolderDialog final : public FolderDialog {
public:
    std::vector<FolderQuestion> questions;
    std::function<void(std::optional<std::filesystem::path>)> answer; ///< to the latest question

    void choose(const FolderQuestion& question,
                std::function<void(std::optional<std::filesystem::path>)> answered) override {
        questions.push_back(question);
        answer = std::move(answered);
    }
};

} // namespace vantoro::testing
