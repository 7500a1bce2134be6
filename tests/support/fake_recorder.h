// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/recorder/recorder.h"
#include "tests/support/call_log.h"

namespace vantoro::testing {

using Recordings = std::vector<std::filesystem::path>;

/// The calls that the fake recorder received, and its answers. Outlives the recorder.
struct RecorderScript {
    std::vector<std::string> calls;
    std::vector<RecordingOptions> options;        ///< of each start
    std::vector<std::pair<float, float>> volumes; ///< of each stop: system, microphone
    std::vector<std::pair<float, float>> expectedVolumes;
    std::vector<std::string> marks;
    std::vector<std::filesystem::path> foldersSought; ///< of each salvage
    std::vector<std::optional<TrackNames>> tracksSought;
    std::vector<bool> stopRequested; ///< whether each salvage was cancelled by then

    std::exception_ptr startError;
    std::exception_ptr stopError;
    bool keepsRecording = true; ///< after a failed stop
    std::filesystem::path recording = "/music/recorded.m4a";
    Recordings salvaged; ///< the result of each salvage, even if a stop was requested
    Recordings keptOriginals;
    std::vector<TracksNotKept> tracksNotKept; ///< of each salvage
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
        throwIfSet(script_.startError);
    }

    void expectVolumes(float systemVolume, float microphoneVolume) override {
        script_.expectedVolumes.emplace_back(systemVolume, microphoneVolume);
    }

    void mark(std::string text) override { script_.marks.push_back(std::move(text)); }

    std::filesystem::path stop(float systemVolume, float microphoneVolume) override {
        script_.calls.emplace_back("stop");
        script_.volumes.emplace_back(systemVolume, microphoneVolume);
        meanwhile(script_.duringStop);
        throwIfSet(script_.stopError);
        onRecordingSafe();
        return script_.recording;
    }

    bool hasKeptRecording() const noexcept override { return script_.keepsRecording; }

    SalvageResult recoverIncompleteRecordings(const std::filesystem::path& folder,
                                              const std::optional<TrackNames>& trackNames,
                                              const std::stop_token& stop) override {
        script_.calls.emplace_back("salvage");
        script_.foldersSought.push_back(folder);
        script_.tracksSought.push_back(trackNames);
        meanwhile(script_.duringSalvage);
        script_.stopRequested.push_back(stop.stop_requested());
        return {script_.salvaged, script_.keptOriginals, {}, script_.tracksNotKept};
    }

private:
    // NOLINTNEXTLINE(performance-unnecessary-value-param): the call may replace it
    static void meanwhile(std::function<void()> what) {
        if (what) {
            what();
        }
    }

    RecorderScript& script_;
};

} // namespace vantoro::testing
